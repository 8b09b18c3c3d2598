#pragma once

#include "desktop/SessionBus.hpp"
#include "desktop/Timeout.hpp"
#include "platform/linux/bus/MessageBus.hpp"

#include <atomic>
#include <limits>
#include <memory>
#include <optional>
#include <stdexcept>
#include <thread>

namespace orvel {

/// A program that says it looks after the items of trays, and talks nonsense.
class StatusNotifierStandIn {
 public:
  /// Answers that many questions with that, and then hangs.
  StatusNotifierStandIn(const SessionBus& bus, const char* answer, int answers = std::numeric_limits<int>::max())
      : bus_(MessageBus::open(bus.address(), TimeLimit(timeout))) {
    if (!bus_) throw std::runtime_error("no bus");
    // A message may still be looked at when this object has gone.
    bus_->observe([questions = questions_, answer, answers](GDBusConnection* connection, GDBusMessage* message) {
      if (g_dbus_message_get_message_type(message) != G_DBUS_MESSAGE_TYPE_METHOD_CALL) return false;
      if ((*questions)++ < answers) reply(connection, message, answer);
      return true;
    });
    const auto named = bus_->call({.destination = "org.freedesktop.DBus",
                                   .path = "/org/freedesktop/DBus",
                                   .interface = "org.freedesktop.DBus",
                                   .method = "RequestName",
                                   .arguments = g_variant_new("(su)", name, 0u),
                                   .replyType = "(u)"},
                                  TimeLimit(timeout));
    if (!named) throw std::runtime_error("no name on the bus");
  }
  ~StatusNotifierStandIn() { g_dbus_connection_close_sync(bus_->connection(), nullptr, nullptr); }
  StatusNotifierStandIn(const StatusNotifierStandIn&) = delete;
  StatusNotifierStandIn& operator=(const StatusNotifierStandIn&) = delete;

  void signalOften(int times) {
    for (int i = 0; i < times; ++i) {
      g_dbus_connection_emit_signal(bus_->connection(), nullptr, "/StatusNotifierWatcher", name,
                                    "StatusNotifierHostRegistered", nullptr, nullptr);
    }
    g_dbus_connection_flush_sync(bus_->connection(), nullptr, nullptr);
  }

  int questions() const { return *questions_; }

  bool waitForQuestions(int count) const {
    const Deadline deadline(timeout);
    while (questions() < count && deadline.left() > Milliseconds(0)) std::this_thread::sleep_for(Milliseconds(5));
    return questions() >= count;
  }

 private:
  static constexpr auto name = "org.kde.StatusNotifierWatcher";

  static void reply(GDBusConnection* connection, GDBusMessage* message, const char* answer) {
    const GLibPointer<GDBusMessage> reply(g_dbus_message_new_method_reply(message));
    g_dbus_message_set_body(reply.get(), g_variant_new_parsed(answer));
    MessageBus::send(connection, reply.get());
  }

  const std::shared_ptr<std::atomic<int>> questions_ = std::make_shared<std::atomic<int>>(0);
  const std::optional<MessageBus> bus_;
};

}  // namespace orvel
