#include "platform/linux/bus/ToolkitBus.hpp"

#include "platform/linux/bus/MessageBus.hpp"

#include <QByteArray>
#include <QDBusConnection>
#include <QtGlobal>

namespace orvel {
namespace {

constexpr auto variable = "DBUS_SESSION_BUS_ADDRESS";

}  // namespace

void forgoSilentBus(const TimeLimit& limit) {
  if (MessageBus::open(sessionBusAddress(), limit)) return;
  const bool wasSet = qEnvironmentVariableIsSet(variable);
  const QByteArray address = qgetenv(variable);
  // The toolkit connects once and never again. Programs that Orvel starts still get the address.
  qputenv(variable, "disabled:");
  QDBusConnection::sessionBus();
  if (wasSet) {
    qputenv(variable, address);
  } else {
    qunsetenv(variable);
  }
}

}  // namespace orvel
