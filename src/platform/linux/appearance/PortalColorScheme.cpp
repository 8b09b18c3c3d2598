#include "platform/linux/appearance/PortalColorScheme.hpp"

#include <QDBusMessage>
#include <QDBusVariant>
#include <QMetaType>
#include <QString>
#include <QVariant>
#include <chrono>
#include <cstddef>
#include <limits>
#include <utility>

namespace orvel {
namespace {

using namespace std::chrono_literals;

constexpr auto askDelay = 20ms;
constexpr int noTimeout = std::numeric_limits<int>::max();  // a login is a busy time

const QString portal = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString settings = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString colorScheme = QStringLiteral("color-scheme");

/// Old portals know the one method, and new ones want the other to be used.
constexpr std::array readMethods = {"Read", "ReadOne"};

constexpr unsigned preferDark = 1;
constexpr unsigned preferLight = 2;

/// What is within a value, or within the value in it: portals differ in how often they wrap one.
QVariant unwrapped(QVariant value) {
  while (value.metaType() == QMetaType::fromType<QDBusVariant>()) value = value.value<QDBusVariant>().variant();
  return value;
}

}  // namespace

PortalColorScheme::PortalColorScheme(Task changed) : changed_(std::move(changed)) {
  askTimer_.setSingleShot(true);
  askTimer_.setInterval(askDelay);
  QObject::connect(&askTimer_, &QTimer::timeout, [this] { ask(); });
  connect();
}

void PortalColorScheme::connect() {
  bus_.emplace(QDBusConnection::sessionBus());
  owner_ = std::make_unique<QDBusServiceWatcher>(portal, *bus_, QDBusServiceWatcher::WatchForRegistration);
  QObject::connect(owner_.get(), &QDBusServiceWatcher::serviceRegistered, &askTimer_, [this] { ask(); });
  // From whoever sends it, for the toolkit would wait for the bus to name the owner; and all that it leads to is a
  // question.
  bus_->connect(QString(), portalPath, settings, QStringLiteral("SettingChanged"), {appearance, colorScheme}, QString(),
                &askTimer_, SLOT(start()));
  ask();
}

void PortalColorScheme::ask() {
  for (std::size_t i = 0; i < readMethods.size(); ++i) {
    QDBusMessage question =
        QDBusMessage::createMethodCall(portal, portalPath, settings, QString::fromLatin1(readMethods[i]));
    question << appearance << colorScheme;
    question.setAutoStartService(false);
    questions_[i] = std::make_unique<QDBusPendingCallWatcher>(bus_->asyncCall(question, noTimeout));
    QObject::connect(questions_[i].get(), &QDBusPendingCallWatcher::finished, &askTimer_,
                     [this](QDBusPendingCallWatcher* answer) { take(*answer); });
  }
}

void PortalColorScheme::take(const QDBusPendingCall& answer) {
  const QDBusMessage reply = answer.reply();
  if (reply.type() != QDBusMessage::ReplyMessage || reply.signature() != QLatin1String("v")) return;
  const QVariant scheme = unwrapped(reply.arguments().constFirst());
  if (scheme.metaType() != QMetaType::fromType<unsigned>()) return;
  const unsigned wanted = scheme.toUInt();
  const bool hasPreference = wanted == preferDark || wanted == preferLight;
  const auto known = std::exchange(isDark_, hasPreference ? std::optional(wanted == preferDark) : std::nullopt);
  if (known != isDark_) changed_();
}

}  // namespace orvel
