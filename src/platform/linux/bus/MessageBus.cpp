#include "platform/linux/bus/MessageBus.hpp"

#include "platform/linux/files/Files.hpp"

#include <QByteArray>
#include <QDBusConnection>
#include <QtGlobal>
#include <atomic>
#include <condition_variable>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <mutex>
#include <stop_token>
#include <string_view>
#include <system_error>

namespace orvel {
namespace {

constexpr auto addressVariable = "DBUS_SESSION_BUS_ADDRESS";
constexpr std::string_view startingOne = "autolaunch:";

/// A handler that one thread gives to another. The locks of the library see to the order, but are not known to all who
/// watch over it; so it is also in an atomic of our own.
class Observer {
 public:
  explicit Observer(MessageBus::MessageHandler handler) : handler_(std::move(handler)) { isGiven_ = true; }
  ~Observer() { isGiven_.load(); }
  Observer(const Observer&) = delete;
  Observer& operator=(const Observer&) = delete;

  bool handle(GDBusConnection* connection, GDBusMessage* message) {
    const bool isDone = isGiven_ && handler_(connection, message);
    isGiven_ = true;
    return isDone;
  }

 private:
  const MessageBus::MessageHandler handler_;
  std::atomic<bool> isGiven_ = false;
};

}  // namespace

std::string sessionBusAddress() {
  std::string address = environmentVariable(addressVariable);
  if (!address.empty() && !address.starts_with(startingOne)) return address;
  const std::string folder = environmentVariable("XDG_RUNTIME_DIR");
  if (folder.empty()) return {};
  const std::filesystem::path socket = std::filesystem::path(folder) / "bus";
  std::error_code ignored;
  if (!std::filesystem::is_socket(socket, ignored)) return {};
  const GLibPointer<char> escaped(g_dbus_address_escape_value(socket.c_str()));
  return "unix:path=" + std::string(escaped.get());
}

std::optional<MessageBus> MessageBus::open(const std::string& address, const TimeLimit& limit,
                                           GCancellable* cancellation) try {
  if (limit.hasPassed()) return std::nullopt;
  const CancelledInTime cancelled(limit, cancellation);
  constexpr auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                           G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
  GLibPointer<GDBusConnection> connection(
      g_dbus_connection_new_for_address_sync(address.c_str(), flags, nullptr, cancelled.get(), nullptr));
  if (!connection) return std::nullopt;
  return MessageBus(std::move(connection));
} catch (const std::system_error&) {  // no thread to be had
  return std::nullopt;
}

GLibPointer<GVariant> MessageBus::call(const BusCall& call, const TimeLimit& limit, GCancellable* cancellation) const {
  const GLibPointer<GVariant> arguments(
      g_variant_ref_sink(call.arguments != nullptr ? call.arguments : g_variant_new_tuple(nullptr, 0)));
  // A name may come from another program, and the library does not forgive a bad one.
  if (limit.hasPassed() || !g_dbus_is_name(call.destination)) return nullptr;
  return GLibPointer<GVariant>(g_dbus_connection_call_sync(
      connection_.get(), call.destination, call.path, call.interface, call.method, arguments.get(),
      G_VARIANT_TYPE(call.replyType), call.flags, static_cast<int>(limit.left().count()), cancellation, nullptr));
}

void MessageBus::observe(MessageHandler handler) const {
  const auto dispatch =
      +[](GDBusConnection* connection, GDBusMessage* message, gboolean isIncoming, gpointer observer) {
        GLibPointer<GDBusMessage> owned(message);
        const bool isDone = isIncoming && static_cast<Observer*>(observer)->handle(connection, message);
        return isDone ? nullptr : owned.release();
      };
  auto observer = std::make_unique<Observer>(std::move(handler));
  g_dbus_connection_add_filter(connection_.get(), dispatch, observer.release(),
                               [](gpointer given) { delete static_cast<Observer*>(given); });
}

void MessageBus::send(GDBusConnection* connection, GDBusMessage* message) {
  g_dbus_connection_send_message(connection, message, G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr, nullptr);
}

CancelledInTime::CancelledInTime(const TimeLimit& limit, GCancellable* cancellation)
    : cancellable_(g_cancellable_new()), outer_(cancellation) {
  thread_ = std::jthread([this, limit](const std::stop_token& ended) {
    std::mutex mutex;
    std::unique_lock lock(mutex);
    std::condition_variable_any changed;
    const auto hasEnded = [&] { return ended.stop_requested(); };
    if (!changed.wait_for(lock, ended, limit.left(), hasEnded)) g_cancellable_cancel(cancellable_.get());
  });
  const auto cancel = +[](GCancellable*, gpointer inner) { g_cancellable_cancel(G_CANCELLABLE(inner)); };
  if (outer_ != nullptr) link_ = g_cancellable_connect(outer_, G_CALLBACK(cancel), cancellable_.get(), nullptr);
}

CancelledInTime::~CancelledInTime() {
  if (outer_ != nullptr) g_cancellable_disconnect(outer_, link_);
}

void keepToolkitOffUnresponsiveBus(const TimeLimit& limit) {
  if (MessageBus::open(sessionBusAddress(), limit)) return;
  const bool wasSet = qEnvironmentVariableIsSet(addressVariable);
  const QByteArray address = qgetenv(addressVariable);
  // The toolkit connects once and never again. Programs that Orvel starts still get the address.
  qputenv(addressVariable, "disabled:");
  QDBusConnection::sessionBus();
  if (wasSet) {
    qputenv(addressVariable, address);
  } else {
    qunsetenv(addressVariable);
  }
}

}  // namespace orvel
