#pragma once

#include "desktop/Timeout.hpp"
#include "platform/linux/GLibPointer.hpp"
#include "platform/linux/bus/MessageBus.hpp"

#include <gio/gio.h>

#include <atomic>
#include <functional>
#include <string>
#include <utility>

namespace orvel {

/// A program of somebody else that has a name on a message bus and answers calls.
///
/// Threads: made and destroyed on one; calls are answered on a thread of the library.
class BusService {
 public:
  /// Returns the body of the reply, or null for what it does not know.
  using Answer = std::function<GVariant*(GDBusMessage* call)>;

  BusService(const std::string& address, const std::string& name, Answer answer)
      : answer_(std::move(answer)), bus_(*MessageBus::open(address, TimeLimit(timeout))) {
    bus_.observe([this](GDBusConnection* connection, GDBusMessage* message) { return handle(connection, message); });
    bus_.call({.destination = "org.freedesktop.DBus",
               .path = "/org/freedesktop/DBus",
               .interface = "org.freedesktop.DBus",
               .method = "RequestName",
               .arguments = g_variant_new("(su)", name.c_str(), 0u),
               .replyType = "(u)"},
              TimeLimit(timeout));
  }
  ~BusService() {
    g_dbus_connection_close_sync(bus_.connection(), nullptr, nullptr);
    calls_.load();
  }
  BusService(const BusService&) = delete;
  BusService& operator=(const BusService&) = delete;

  void signal(const char* path, const char* interface, const char* name, GVariant* body) const {
    g_dbus_connection_emit_signal(bus_.connection(), nullptr, path, interface, name, body, nullptr);
  }

 private:
  bool handle(GDBusConnection* connection, GDBusMessage* message) {
    if (g_dbus_message_get_message_type(message) != G_DBUS_MESSAGE_TYPE_METHOD_CALL) return false;
    GVariant* body = answer_(message);
    ++calls_;
    if (body == nullptr) return false;
    const GLibPointer<GDBusMessage> reply(g_dbus_message_new_method_reply(message));
    g_dbus_message_set_body(reply.get(), body);
    MessageBus::send(connection, reply.get());
    return true;
  }

  const Answer answer_;
  std::atomic<int> calls_ = 0;  // orders them before the end also for who does not know the library's locks
  const MessageBus bus_;
};

}  // namespace orvel
