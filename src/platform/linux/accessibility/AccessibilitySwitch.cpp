#include "platform/linux/accessibility/AccessibilitySwitch.hpp"

#include "platform/linux/bus/MessageBus.hpp"

#include <chrono>
#include <system_error>

namespace orvel {
namespace {

// The bus may first have to start the program that is asked.
constexpr std::chrono::seconds switchTimeout{10};

constexpr auto properties = "org.freedesktop.DBus.Properties";
constexpr auto status = "org.a11y.Status";
constexpr auto enabled = "IsEnabled";

BusCall toStatus(const char* method, const char* replyType, GVariant* arguments) {
  return {.destination = "org.a11y.Bus",
          .path = "/org/a11y/bus",
          .interface = properties,
          .method = method,
          .arguments = arguments,
          .replyType = replyType};
}

bool isOn(const MessageBus& bus, const TimeLimit& limit, GCancellable* cancellation) {
  const auto reply = bus.call(toStatus("Get", "(v)", g_variant_new("(ss)", status, enabled)), limit, cancellation);
  if (!reply) return false;
  const GLibPointer<GVariant> box(g_variant_get_child_value(reply.get(), 0));
  const GLibPointer<GVariant> value(g_variant_get_variant(box.get()));
  return g_variant_is_of_type(value.get(), G_VARIANT_TYPE_BOOLEAN) && g_variant_get_boolean(value.get());
}

void turnOn(const std::string& sessionBus, GCancellable* cancellation) {
  const TimeLimit limit(switchTimeout);
  const auto bus = MessageBus::open(sessionBus, limit, cancellation);
  // Set only where it is off: the desktop may write down that it was set.
  if (!bus || isOn(*bus, limit, cancellation)) return;
  bus->call(toStatus("Set", "()", g_variant_new("(ssv)", status, enabled, g_variant_new_boolean(TRUE))), limit,
            cancellation);
}

}  // namespace

AccessibilitySwitch::AccessibilitySwitch(const std::string& sessionBus) : cancellation_(g_cancellable_new()) {
  if (sessionBus.empty()) return;
  try {
    thread_ = std::thread([this, sessionBus] { turnOn(sessionBus, cancellation_.get()); });
  } catch (const std::system_error&) {
    return;  // no thread to be had: programs that are accessible already stay so
  }
}

AccessibilitySwitch::~AccessibilitySwitch() {
  g_cancellable_cancel(cancellation_.get());
  if (thread_.joinable()) thread_.join();
}

}  // namespace orvel
