#pragma once

#include "platform/linux/GLibPointer.hpp"

#include <gio/gio.h>

#include <algorithm>
#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <utility>

namespace orvel {

/// How long something may take that waits for others several times. Threads: as any value.
class TimeLimit {
 public:
  explicit TimeLimit(std::chrono::milliseconds limit) : end_(std::chrono::steady_clock::now() + limit) {}

  /// What is left; 0 when it has passed.
  std::chrono::milliseconds left() const {
    const auto rest = std::chrono::floor<std::chrono::milliseconds>(end_ - std::chrono::steady_clock::now());
    return std::max(rest, std::chrono::milliseconds(0));
  }

  bool hasPassed() const { return left() == std::chrono::milliseconds(0); }

 private:
  std::chrono::steady_clock::time_point end_;
};

/// Cancels an operation when it takes too long or when its caller cancels it. For what has no time limit of its own.
///
/// Threads: made and destroyed on one.
class CancelledInTime {
 public:
  /// `cancellation` may be null. Throws std::system_error when there is no thread to be had.
  explicit CancelledInTime(const TimeLimit& limit, GCancellable* cancellation = nullptr);
  ~CancelledInTime();
  CancelledInTime(const CancelledInTime&) = delete;
  CancelledInTime& operator=(const CancelledInTime&) = delete;

  GCancellable* get() const { return cancellable_.get(); }

 private:
  const GLibPointer<GCancellable> cancellable_;
  GCancellable* const outer_;
  gulong link_ = 0;
  std::jthread thread_;
};

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

/// Keeps the toolkit off the bus of this login when that does not answer within `limit`: the toolkit would wait for it
/// without end when it shows its first window or icon. Called before the application is made and other threads are.
void keepToolkitOffUnresponsiveBus(const TimeLimit& limit);

}  // namespace orvel
