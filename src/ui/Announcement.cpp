#include "ui/Announcement.hpp"

#include <QAccessible>
#include <QTimer>
#include <QtGlobal>
#include <chrono>

namespace orvel {
namespace {

/// Screen readers first hear of a notification and ask later what it says.
[[maybe_unused]] constexpr std::chrono::seconds lifetime{5};

}  // namespace

Announcement::Announcement(QWidget* window, const QString& text) : QWidget(window) {
  setFixedSize(1, 1);
  setAttribute(Qt::WA_TransparentForMouseEvents);
  setAccessibleName(text);
}

void Announcement::make(QWidget* window, const QString& text) {
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
  QAccessibleAnnouncementEvent event(window, text);
  QAccessible::updateAccessibility(&event);
#else
  auto* notification = new Announcement(window, text);
  QTimer::singleShot(lifetime, notification, &QObject::deleteLater);
  notification->show();
#endif
}

}  // namespace orvel
