#include "ui/Announcer.hpp"

#include <QAccessible>
#include <QtGlobal>

namespace orvel {

Announcer::Announcer(QWidget* parent) : QWidget(parent) {
  setFixedSize(1, 1);
  setAttribute(Qt::WA_TransparentForMouseEvents);
  hide();
}

void Announcer::announce(const QString& text) {
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
  if (text.isEmpty()) return;
  QAccessibleAnnouncementEvent event(parentWidget(), text);
  QAccessible::updateAccessibility(&event);
#else
  // Screen readers say a notification when it comes up. The last one goes, so that nobody finds it later.
  hide();
  if (text.isEmpty()) return;
  setAccessibleName(text);
  show();
#endif
}

}  // namespace orvel
