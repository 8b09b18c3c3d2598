#pragma once

#include "desktop/Patience.hpp"
#include "desktop/SessionBus.hpp"
#include "platform/linux/GLibPointer.hpp"

#include <gio/gio.h>

#include <atomic>
#include <limits>
#include <stdexcept>
#include <thread>

namespace orvel {

/// A program that says it looks after the items of trays, and talks nonsense.
class StatusNotifierStandIn {
 public:
  /// Answers that many questions with that, and then hangs.
  StatusNotifierStandIn(const SessionBus& bus, const char* answer, int answers = std::numeric_limits<int>::max())
      : answer_(answer), answers_(answers) {
    constexpr auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                             G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    connection_.reset(g_dbus_connection_new_for_address_sync(bus.address().c_str(), flags, nullptr, nullptr, nullptr));
    filter_ = g_dbus_connection_add_filter(connection_.get(), filter, this, nullptr);
    const GLibPointer<GVariant> reply(g_dbus_connection_call_sync(
        connection_.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
        g_variant_new("(su)", name, 0), nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr));
    if (!reply) throw std::runtime_error("no name on the bus");
  }
  ~StatusNotifierStandIn() {
    g_dbus_connection_close_sync(connection_.get(), nullptr, nullptr);
    g_dbus_connection_remove_filter(connection_.get(), filter_);
  }
  StatusNotifierStandIn(const StatusNotifierStandIn&) = delete;
  StatusNotifierStandIn& operator=(const StatusNotifierStandIn&) = delete;

  void signalOften(int times) {
    for (int i = 0; i < times; ++i) {
      g_dbus_connection_emit_signal(connection_.get(), nullptr, "/StatusNotifierWatcher", name,
                                    "StatusNotifierHostRegistered", nullptr, nullptr);
    }
    g_dbus_connection_flush_sync(connection_.get(), nullptr, nullptr);
  }

  int questions() const { return questions_; }

  bool waitForQuestions(int count) const {
    const Deadline deadline(patience);
    while (questions_ < count && deadline.left() > Milliseconds(0)) std::this_thread::sleep_for(Milliseconds(5));
    return questions_ >= count;
  }

 private:
  static constexpr auto name = "org.kde.StatusNotifierWatcher";

  /// Runs on a thread of the bus.
  static GDBusMessage* filter(GDBusConnection* connection, GDBusMessage* message, gboolean isIncoming, gpointer self) {
    if (!isIncoming || g_dbus_message_get_message_type(message) != G_DBUS_MESSAGE_TYPE_METHOD_CALL) return message;
    auto& standIn = *static_cast<StatusNotifierStandIn*>(self);
    if (standIn.questions_++ >= standIn.answers_) {
      g_object_unref(message);
      return nullptr;
    }
    const GLibPointer<GDBusMessage> reply(g_dbus_message_new_method_reply(message));
    g_dbus_message_set_body(reply.get(), g_variant_new_parsed(standIn.answer_));
    g_dbus_connection_send_message(connection, reply.get(), G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr, nullptr);
    g_object_unref(message);
    return nullptr;
  }

  const char* const answer_;
  const int answers_;
  std::atomic<int> questions_ = 0;
  GLibPointer<GDBusConnection> connection_;
  guint filter_ = 0;
};

}  // namespace orvel
