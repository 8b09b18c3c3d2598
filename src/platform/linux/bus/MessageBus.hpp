#pragma once

#include "platform/linux/GLibPointer.hpp"
#include "platform/linux/bus/TimeLimit.hpp"

#include <gio/gio.h>

#include <functional>
#include <optional>
#include <string>
#include <utility>

namespace orvel {

/// The address of the bus of this login, without starting one. Empty when there is none.
std::string sessionBusAddress();

/// A call of a method of an object on a bus. `arguments` may be fresh from their making ("floating"), or null.
struct BusCall {
  const char* destination;
  const char* path;
  const char* interface;
  const char* method;
  GVariant* arguments = nullptr;
  const char* replyType = "()";  ///< Any other reply is as good as none.
  GDBusCallFlags flags = G_DBUS_CALL_FLAGS_NONE;
};

/// A connection of one's own to a message bus, that is not shared with anything else in this program.
///
/// Threads: one at a time, but `send` on any.
class MessageBus {
 public:
  /// Sees a message that came in by the connection; true when it has dealt with it.
  using MessageHandler = std::function<bool(GDBusConnection* connection, GDBusMessage* message)>;

  /// Connects, within `limit` and until `cancellation`. Nothing when no bus answers there.
  static std::optional<MessageBus> open(const std::string& address, const TimeLimit& limit,
                                        GCancellable* cancellation = nullptr);

  /// False once the bus has gone.
  bool isAlive() const { return !g_dbus_connection_is_closed(connection_.get()); }

  /// Calls, and waits for the reply, within `limit` and until `cancellation`. Null without one.
  GLibPointer<GVariant> call(const BusCall& call, const TimeLimit& limit, GCancellable* cancellation = nullptr) const;

  /// Has `handler` see all that comes in, on a thread of the library, and for a moment even after this object has gone.
  void observe(MessageHandler handler) const;

  GDBusConnection* connection() const { return connection_.get(); }

  /// Sends a message by a connection, and does not wait for anything.
  static void send(GDBusConnection* connection, GDBusMessage* message);

 private:
  explicit MessageBus(GLibPointer<GDBusConnection> connection) : connection_(std::move(connection)) {}

  GLibPointer<GDBusConnection> connection_;
};

}  // namespace orvel
