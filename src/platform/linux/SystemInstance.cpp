#include "platform/linux/SystemInstance.hpp"

#include "base/UTF8.hpp"
#include "platform/linux/bus/ApplicationObject.hpp"
#include "platform/linux/files/Files.hpp"

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <utility>

namespace orvel {
namespace {

constexpr auto busName = "app.orvel.Orvel";
constexpr std::chrono::seconds claimTimeout{1};
constexpr std::chrono::seconds showTimeout{2};

// As the bus has them.
constexpr std::uint32_t doNotQueue = 4;
constexpr std::uint32_t belongsToAnother = 3;

/// The activation token of the environment, which is removed from it.
std::string takeToken() {
  std::string token;
  for (const char* name : {"XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID"}) {
    const std::string value = environmentVariable(name);
    if (token.empty() && isValidUTF8(value)) token = value;
    unsetenv(name);
  }
  return token;
}

bool isOwnedByAnother(const MessageBus& bus, const TimeLimit& limit) {
  const auto reply = bus.call({.destination = "org.freedesktop.DBus",
                               .path = "/org/freedesktop/DBus",
                               .interface = "org.freedesktop.DBus",
                               .method = "RequestName",
                               .arguments = g_variant_new("(su)", busName, doNotQueue),
                               .replyType = "(u)"},
                              limit);
  std::uint32_t answer = 0;
  if (reply) g_variant_get(reply.get(), "(u)", &answer);
  return answer == belongsToAnother;
}

}  // namespace

SystemInstance::SystemInstance() : token_(takeToken()) {}

SystemInstance::~SystemInstance() = default;

bool SystemInstance::claim(ShowPanel showPanel) {
  const TimeLimit limit(claimTimeout);
  bus_ = MessageBus::open(sessionBusAddress(), limit);
  if (!bus_) return true;
  // Before the name is ours, so that no call finds the name without the object.
  object_ = std::make_unique<ApplicationObject>(*bus_, busName, std::move(showPanel));
  if (!isOwnedByAnother(*bus_, limit)) return true;
  object_ = nullptr;
  bus_.reset();
  return false;
}

bool SystemInstance::showOther() {
  const TimeLimit limit(showTimeout);
  const auto bus = MessageBus::open(sessionBusAddress(), limit);
  if (!bus) return false;
  return ApplicationObject::activate(*bus, busName, token_, limit, G_DBUS_CALL_FLAGS_NO_AUTO_START);
}

std::unique_ptr<Instance> openInstance() {
  return std::make_unique<SystemInstance>();
}

}  // namespace orvel
