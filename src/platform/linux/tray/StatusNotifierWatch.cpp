#include "platform/linux/tray/StatusNotifierWatch.hpp"

#include <QDBusError>
#include <QDBusMessage>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QString>
#include <QVariant>
#include <chrono>
#include <utility>

namespace orvel {
namespace {

using namespace std::chrono_literals;

constexpr auto askInterval = 20ms;
constexpr auto hostGrace = 5s;
constexpr std::chrono::milliseconds answerLimit = 5s;

const QString watcher = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString watcherObject = QStringLiteral("/StatusNotifierWatcher");
const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");

}  // namespace

StatusNotifierWatch::StatusNotifierWatch(std::function<void()> answered)
    : answered_(std::move(answered)),
      bus_(QDBusConnection::sessionBus()),
      owner_(watcher, bus_, QDBusServiceWatcher::WatchForOwnerChange) {
  askTimer_.setSingleShot(true);
  askTimer_.setInterval(askInterval);
  graceTimer_.setSingleShot(true);
  graceTimer_.setInterval(hostGrace);
  QObject::connect(&askTimer_, &QTimer::timeout, [this] { askNow(); });
  QObject::connect(&graceTimer_, &QTimer::timeout, [this] { report(Host::absent); });
  followOwner();
  followSignals();
  // At once, for until the answer there is no icon.
  QTimer::singleShot(0ms, &askTimer_, [this] { askNow(); });
}

void StatusNotifierWatch::followOwner() {
  QObject::connect(&owner_, &QDBusServiceWatcher::serviceOwnerChanged,
                   [this](const QString&, const QString&, const QString& owner) {
                     // A question to the previous owner is void.
                     question_.reset();
                     host_ = Host::unknown;
                     if (owner.isEmpty()) return report(Host::absent);
                     ask();
                   });
}

void StatusNotifierWatch::followSignals() {
  for (const char* signal : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"}) {
    bus_.connect(watcher, watcherObject, watcher, QString::fromLatin1(signal), &askTimer_, SLOT(start()));
  }
  bus_.connect(watcher, watcherObject, propertiesInterface, QStringLiteral("PropertiesChanged"), &askTimer_,
               SLOT(start()));
}

void StatusNotifierWatch::askNow() {
  if (!bus_.isConnected()) return report(Host::absent);
  QDBusMessage question =
      QDBusMessage::createMethodCall(watcher, watcherObject, propertiesInterface, QStringLiteral("Get"));
  question << watcher << QStringLiteral("IsStatusNotifierHostRegistered");
  question.setAutoStartService(false);
  question_ = std::make_unique<QDBusPendingCallWatcher>(bus_.asyncCall(question, int(answerLimit.count())));
  QObject::connect(question_.get(), &QDBusPendingCallWatcher::finished, [this] { take(); });
}

void StatusNotifierWatch::take() {
  const QDBusPendingReply<QDBusVariant> reply = *question_;
  if (reply.isError()) {
    const auto error = reply.error().type();
    const bool hangs = error == QDBusError::NoReply || error == QDBusError::Timeout || error == QDBusError::TimedOut;
    // The desktop may just be starting, and slow: its answer is worth waiting for, a question at a time.
    if (hangs) ask();
    return report(hangs ? Host::unknown : Host::absent);
  }
  if (reply.value().variant().toBool()) return report(Host::present);
  // There is a watcher without a host yet. The host will come soon, and is better than any older tray.
  if (host_ == Host::unknown) return graceTimer_.isActive() ? void() : graceTimer_.start();
  report(Host::absent);
}

StatusNotifierWatch::Host StatusNotifierWatch::host() const {
  return bus_.isConnected() ? host_ : Host::absent;
}

void StatusNotifierWatch::report(Host host) {
  graceTimer_.stop();
  host_ = host;
  answered_();
}

}  // namespace orvel
