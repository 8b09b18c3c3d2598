#include "platform/linux/SystemAccessibilityTree.hpp"

#include "platform/linux/accessibility/ElementSearch.hpp"

#include <chrono>
#include <utility>

namespace orvel {
namespace {

// For all that is asked: a person who snaps onto a program that hangs shall not notice more than that nothing happens.
constexpr std::chrono::milliseconds searchTimeout{300};

std::string accessibilityBusAddress(const std::string& sessionBus, const TimeLimit& limit) {
  const auto bus = MessageBus::open(sessionBus, limit);
  if (!bus) return {};
  const auto reply = bus->call({.destination = "org.a11y.Bus",
                                .path = "/org/a11y/bus",
                                .interface = "org.a11y.Bus",
                                .method = "GetAddress",
                                .replyType = "(s)"},
                               limit);
  if (!reply) return {};
  const char* address = nullptr;
  g_variant_get(reply.get(), "(&s)", &address);
  return address;
}

}  // namespace

SystemAccessibilityTree::SystemAccessibilityTree(FindWindowAt findWindow, const std::string& sessionBus)
    : findWindow_(std::move(findWindow)), sessionBus_(sessionBus), switch_(sessionBus) {}

std::optional<AccessibleElement> SystemAccessibilityTree::elementAt(Point position) {
  const auto window = findWindow_(position);
  const TimeLimit limit(searchTimeout);
  if (!window || !connect(limit)) return std::nullopt;
  const AccessibleConversation conversation{.bus = *bus_, .limit = limit};
  for (const AccessibleObject& program : AccessibleObject::desktop(conversation).children()) {
    if (program.process() != window->process) continue;
    if (auto element = ElementSearch(program, *window, position).find()) return element;
  }
  return std::nullopt;
}

bool SystemAccessibilityTree::connect(const TimeLimit& limit) {
  if (bus_ && bus_->isAlive()) return true;
  bus_.reset();
  if (sessionBus_.empty()) return false;
  const std::string address = accessibilityBusAddress(sessionBus_, limit);
  if (!address.empty()) bus_ = MessageBus::open(address, limit);
  return bus_.has_value();
}

}  // namespace orvel
