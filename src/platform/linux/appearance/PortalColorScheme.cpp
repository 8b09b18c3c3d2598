#include "platform/linux/appearance/PortalColorScheme.hpp"

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>

namespace orvel {
namespace {

constexpr std::chrono::seconds loginTimeout{60};  // a login is a busy time

constexpr auto portal = "org.freedesktop.portal.Desktop";
constexpr auto portalPath = "/org/freedesktop/portal/desktop";
constexpr auto settings = "org.freedesktop.portal.Settings";
constexpr auto appearance = "org.freedesktop.appearance";
constexpr auto colorScheme = "color-scheme";
constexpr std::uint32_t preferDark = 1;
constexpr std::uint32_t preferLight = 2;

constexpr auto arrivals =
    "type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',member='NameOwnerChanged',"
    "arg0='org.freedesktop.portal.Desktop'";
constexpr auto changes =
    "type='signal',sender='org.freedesktop.portal.Desktop',interface='org.freedesktop.portal.Settings',"
    "member='SettingChanged',arg0='org.freedesktop.appearance'";

void listenTo(GDBusConnection* connection, const char* signals) {
  const GLibPointer<GDBusMessage> message(g_dbus_message_new_method_call(
      "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "AddMatch"));
  g_dbus_message_set_body(message.get(), g_variant_new("(s)", signals));
  g_dbus_message_set_flags(message.get(), G_DBUS_MESSAGE_FLAGS_NO_REPLY_EXPECTED);
  MessageBus::send(connection, message.get());
}

/// Old portals know the one method, and new ones want the other to be used.
void ask(GDBusConnection* connection) {
  for (const char* method : {"Read", "ReadOne"}) {
    const GLibPointer<GDBusMessage> message(g_dbus_message_new_method_call(portal, portalPath, settings, method));
    g_dbus_message_set_body(message.get(), g_variant_new("(ss)", appearance, colorScheme));
    g_dbus_message_set_flags(message.get(), G_DBUS_MESSAGE_FLAGS_NO_AUTO_START);
    MessageBus::send(connection, message.get());
  }
}

/// What is within a value, or within the value in it: portals differ in how often they wrap one.
GLibPointer<GVariant> unwrapped(GLibPointer<GVariant> value) {
  while (g_variant_is_of_type(value.get(), G_VARIANT_TYPE_VARIANT)) value.reset(g_variant_get_variant(value.get()));
  return value;
}

bool tellsOfArrival(GDBusMessage* signal, GVariant* body) {
  if (viewOf(g_dbus_message_get_member(signal)) != "NameOwnerChanged") return false;
  if (!g_variant_is_of_type(body, G_VARIANT_TYPE("(sss)"))) return false;
  const char* name = nullptr;
  const char* owner = nullptr;
  g_variant_get(body, "(&s&s&s)", &name, nullptr, &owner);
  return viewOf(name) == portal && !viewOf(owner).empty();
}

/// The value that it tells of; null when that is another's.
GLibPointer<GVariant> changedValue(GDBusMessage* signal, GVariant* body) {
  if (viewOf(g_dbus_message_get_member(signal)) != "SettingChanged") return nullptr;
  if (!g_variant_is_of_type(body, G_VARIANT_TYPE("(ssv)"))) return nullptr;
  const char* group = nullptr;
  const char* key = nullptr;
  GVariant* value = nullptr;
  g_variant_get(body, "(&s&sv)", &group, &key, &value);
  GLibPointer<GVariant> owned(value);
  return viewOf(group) == appearance && viewOf(key) == colorScheme ? std::move(owned) : nullptr;
}

}  // namespace

/// What has been heard.
class PortalColorScheme::Answer {
 public:
  explicit Answer(Task changed) : changed_(std::move(changed)) {}

  std::optional<bool> isDark() const {
    return isDark_.withLock([](const std::optional<bool>& isDark) { return isDark; });
  }

  /// Takes what has come from the bus.
  void hear(GDBusConnection* connection, GDBusMessage* message) {
    GVariant* body = g_dbus_message_get_body(message);
    if (body == nullptr) return;
    const auto type = g_dbus_message_get_message_type(message);
    if (type == G_DBUS_MESSAGE_TYPE_METHOD_RETURN && g_variant_is_of_type(body, G_VARIANT_TYPE("(v)"))) {
      take(GLibPointer<GVariant>(g_variant_get_child_value(body, 0)));
    } else if (type == G_DBUS_MESSAGE_TYPE_SIGNAL && tellsOfArrival(message, body)) {
      ask(connection);
    } else if (type == G_DBUS_MESSAGE_TYPE_SIGNAL) {
      if (auto value = changedValue(message, body)) take(std::move(value));
    }
  }

 private:
  void take(GLibPointer<GVariant> value) {
    const auto scheme = unwrapped(std::move(value));
    if (!g_variant_is_of_type(scheme.get(), G_VARIANT_TYPE_UINT32)) return;
    const std::uint32_t wanted = g_variant_get_uint32(scheme.get());
    const bool isSaid = wanted == preferDark || wanted == preferLight;
    const auto heard = isSaid ? std::optional(wanted == preferDark) : std::nullopt;
    const auto known = isDark_.withLock([&](std::optional<bool>& isDark) { return std::exchange(isDark, heard); });
    if (known != heard) changed_();
  }

  const Task changed_;
  Guarded<std::optional<bool>> isDark_;
};

PortalColorScheme::PortalColorScheme(Task changed)
    : answer_(std::make_shared<Answer>(std::move(changed))), cancellation_(g_cancellable_new()) {
  const std::string address = sessionBusAddress();
  if (address.empty()) return;
  try {
    thread_ = std::thread([this, address] { connect(address); });
  } catch (const std::system_error&) {  // no thread to be had
  }
}

PortalColorScheme::~PortalColorScheme() {
  g_cancellable_cancel(cancellation_.get());
  if (thread_.joinable()) thread_.join();
}

std::optional<bool> PortalColorScheme::isDark() const {
  return answer_->isDark();
}

void PortalColorScheme::connect(const std::string& address) {
  bus_ = MessageBus::open(address, TimeLimit(loginTimeout), cancellation_.get());
  if (!bus_) return;
  bus_->observe([answer = answer_](GDBusConnection* connection, GDBusMessage* message) {
    answer->hear(connection, message);
    return false;
  });
  for (const char* signals : {arrivals, changes}) listenTo(bus_->connection(), signals);
  ask(bus_->connection());
}

}  // namespace orvel
