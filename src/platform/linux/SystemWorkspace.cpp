#include "platform/linux/SystemWorkspace.hpp"

#include "platform/linux/X11Connection.hpp"

#include <cstdint>
#include <string_view>
#include <utility>

namespace orvel {
namespace {

constexpr std::string_view activeWindowName = "_NET_ACTIVE_WINDOW";

xcb_atom_t atomNamed(const X11Connection& connection, std::string_view name) {
  const auto asked = xcb_intern_atom(connection.get(), false, static_cast<std::uint16_t>(name.size()), name.data());
  const X11Answer<xcb_intern_atom_reply_t> reply{xcb_intern_atom_reply(connection.get(), asked, nullptr)};
  return reply ? reply->atom : static_cast<xcb_atom_t>(XCB_ATOM_NONE);
}

}  // namespace

SystemWorkspace::SystemWorkspace(X11Connection& connection)
    : root_(connection.root()), activeWindow_(atomNamed(connection, activeWindowName)) {}

void SystemWorkspace::observeActivation(std::function<void()> handler) {
  handler_.withLock([&](std::function<void()>& observer) { observer = std::move(handler); });
}

std::vector<RunningApplication> SystemWorkspace::runningApplications() {
  return {};
}

std::optional<std::string> SystemWorkspace::location(const std::string&) {
  return std::nullopt;
}

std::optional<std::vector<std::uint8_t>> SystemWorkspace::icon(const std::string&, double) {
  return std::nullopt;
}

void SystemWorkspace::activate(const RunningApplication&) {}

void SystemWorkspace::terminate(const RunningApplication&) {}

void SystemWorkspace::open(const std::string&) {}

void SystemWorkspace::handle(const xcb_generic_event_t& event) {
  if ((event.response_type & x11EventTypeMask) != XCB_PROPERTY_NOTIFY) return;
  const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
  if (change.window != root_ || change.atom != activeWindow_) return;
  const auto handler = handler_.withLock([](const std::function<void()>& observer) { return observer; });
  if (handler) handler();
}

}  // namespace orvel
