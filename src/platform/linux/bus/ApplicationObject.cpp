#include "platform/linux/bus/ApplicationObject.hpp"

#include "base/Guarded.hpp"
#include "platform/linux/GLibPointer.hpp"
#include "platform/linux/MainThreadCall.hpp"
#include "platform/linux/bus/MessageBus.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

namespace orvel {
namespace {

using Message = GLibPointer<GDBusMessage>;

constexpr std::size_t mostCalls = 16;  // that wait for the main thread
constexpr std::size_t longestToken = 1024;
constexpr std::string_view showAction = "show";
constexpr auto applicationInterface = "org.freedesktop.Application";
// Programs read the one that they know.
constexpr std::array tokenKeys = {"activation-token", "desktop-startup-id"};
constexpr auto badArguments = "org.freedesktop.DBus.Error.InvalidArgs";
constexpr auto tooMany = "org.freedesktop.DBus.Error.LimitsExceeded";

struct Method {
  std::string_view name;
  const char* arguments;
  std::size_t platformData;  // the index of the argument
};

constexpr std::array methods = {Method{"Activate", "(a{sv})", 0}, Method{"Open", "(asa{sv})", 1},
                                Method{"ActivateAction", "(sava{sv})", 2}};
constexpr const Method& activateAction = methods[2];

const Method* methodOf(GDBusMessage* message) {
  for (const Method& method : methods) {
    if (viewOf(g_dbus_message_get_member(message)) == method.name) return &method;
  }
  return nullptr;
}

bool isFitting(GVariant* arguments, const Method& method) {
  if (arguments == nullptr || !g_variant_is_of_type(arguments, G_VARIANT_TYPE(method.arguments))) return false;
  if (&method != &activateAction) return true;
  const char* action = nullptr;
  g_variant_get_child(arguments, 0, "&s", &action);
  return action == showAction;
}

std::string tokenIn(GVariant* arguments, const Method& method) {
  const GLibPointer<GVariant> platformData(g_variant_get_child_value(arguments, method.platformData));
  for (const char* key : tokenKeys) {
    const char* token = nullptr;
    if (g_variant_lookup(platformData.get(), key, "&s", &token) && viewOf(token).size() <= longestToken) return token;
  }
  return {};
}

/// The arguments of `Activate`.
GVariant* platformDataWith(const std::string& token) {
  GVariantBuilder data;
  g_variant_builder_init(&data, G_VARIANT_TYPE("(a{sv})"));
  g_variant_builder_open(&data, G_VARIANT_TYPE("a{sv}"));
  for (const char* key : tokenKeys) {
    if (!token.empty()) g_variant_builder_add(&data, "{sv}", key, g_variant_new_string(token.c_str()));
  }
  g_variant_builder_close(&data);
  return g_variant_builder_end(&data);
}

/// The object that stands for the program of that name on a bus.
std::string objectPathOf(const std::string& name) {
  std::string path = "/" + name;
  std::replace(path.begin(), path.end(), '.', '/');
  std::replace(path.begin(), path.end(), '-', '_');
  return path;
}

bool wantsReply(GDBusMessage* message) {
  return (g_dbus_message_get_flags(message) & G_DBUS_MESSAGE_FLAGS_NO_REPLY_EXPECTED) == 0;
}

Message replyTo(GDBusMessage* message) {
  return Message(wantsReply(message) ? g_dbus_message_new_method_reply(message) : nullptr);
}

void refuse(GDBusConnection* connection, GDBusMessage* message, const char* error, const char* reason) {
  if (!wantsReply(message)) return;
  const Message reply(g_dbus_message_new_method_error_literal(message, error, reason));
  MessageBus::send(connection, reply.get());
}

}  // namespace

/// The calls that have come and wait for the main thread.
class ApplicationObject::Calls {
 public:
  Calls(const MessageBus& bus, std::string path, Show show)
      : bus_(bus), path_(std::move(path)), show_(std::move(show)) {}

  /// Takes a call in, on any thread.
  bool take(GDBusConnection* connection, GDBusMessage* message) {
    const Method* method = isForUs(message) ? methodOf(message) : nullptr;
    if (method == nullptr) return false;
    GVariant* arguments = g_dbus_message_get_body(message);
    if (!isFitting(arguments, *method)) {
      refuse(connection, message, badArguments, "Orvel shows its panel, and does nothing else.");
    } else if (!keep({replyTo(message), tokenIn(arguments, *method)})) {
      refuse(connection, message, tooMany, "Orvel has been asked that many times already.");
    }
    return true;
  }

  void cancel() { arrival_.cancel(); }

 private:
  struct Call {
    Message reply;  // null when none is wanted
    std::string token;
  };

  bool isForUs(GDBusMessage* message) const {
    const auto named = viewOf(g_dbus_message_get_interface(message));
    return g_dbus_message_get_message_type(message) == G_DBUS_MESSAGE_TYPE_METHOD_CALL &&
           viewOf(g_dbus_message_get_path(message)) == path_ && (named.empty() || named == applicationInterface);
  }

  bool keep(Call call) {
    const bool isKept = waiting_.withLock([&](std::vector<Call>& waiting) {
      if (waiting.size() == mostCalls) return false;
      waiting.push_back(std::move(call));
      return true;
    });
    if (isKept) arrival_.ask();
    return isKept;
  }

  void answer() {
    const auto calls = waiting_.withLock([](std::vector<Call>& waiting) { return std::exchange(waiting, {}); });
    for (const Call& call : calls) {
      show_(call.token);
      if (call.reply) MessageBus::send(bus_.connection(), call.reply.get());
    }
  }

  const MessageBus& bus_;  // for the main thread, on which it is still there
  const std::string path_;
  const Show show_;
  Guarded<std::vector<Call>> waiting_;
  MainThreadCall arrival_{[this] { answer(); }};
};

ApplicationObject::ApplicationObject(const MessageBus& bus, const std::string& name, Show show)
    : calls_(std::make_shared<Calls>(bus, objectPathOf(name), std::move(show))) {
  bus.observe([calls = calls_](GDBusConnection* connection, GDBusMessage* message) {
    return calls->take(connection, message);
  });
}

ApplicationObject::~ApplicationObject() {
  calls_->cancel();
}

bool ApplicationObject::activate(const MessageBus& bus, const std::string& name, const std::string& token,
                                 const TimeLimit& limit, GDBusCallFlags flags) {
  return bus.call({.destination = name.c_str(),
                   .path = objectPathOf(name).c_str(),
                   .interface = applicationInterface,
                   .method = "Activate",
                   .arguments = platformDataWith(token),
                   .flags = flags},
                  limit) != nullptr;
}

}  // namespace orvel
