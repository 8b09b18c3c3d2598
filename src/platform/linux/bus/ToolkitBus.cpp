#include "platform/linux/bus/ToolkitBus.hpp"

#include "platform/linux/bus/MessageBus.hpp"

#include <QByteArray>
#include <QDBusConnection>
#include <QtGlobal>

namespace orvel {
namespace {

constexpr auto addressVariable = "DBUS_SESSION_BUS_ADDRESS";

}  // namespace

void forgoSilentBus(const TimeLimit& limit) {
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
