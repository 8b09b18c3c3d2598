#include "ui/PanelAccessibility.hpp"

#include "ui/Widgets.hpp"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QTimer>
#include <QWidget>
#include <QtGlobal>
#include <chrono>

namespace orvel::PanelAccessibility {
namespace {

/// The toolkit's own for buttons is not to be derived from.
class DisclosureInterface final : public QAccessibleWidget {
 public:
  explicit DisclosureInterface(DisclosureButton* button)
      : QAccessibleWidget(button, QAccessible::Button), button_(*button) {}

  QString text(QAccessible::Text kind) const override {
    return kind == QAccessible::Name ? button_.text() : QAccessibleWidget::text(kind);
  }

  QAccessible::State state() const override {
    QAccessible::State state = QAccessibleWidget::state();
    state.pressed = button_.isDown();
    state.expandable = true;
    state.expanded = button_.isExpanded();
    state.collapsed = !button_.isExpanded();
    return state;
  }

  QStringList actionNames() const override { return {pressAction(), setFocusAction()}; }

  void doAction(const QString& action) override {
    if (action == pressAction()) return button_.click();
    QAccessibleWidget::doAction(action);
  }

 private:
  DisclosureButton& button_;
};

/// Stands in for the toolkit's announcements, where it has none. Nobody sees it.
class Notification final : public QWidget {
 public:
  Notification(QWidget* window, const QString& text) : QWidget(window) {
    setFixedSize(1, 1);
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAccessibleName(text);
  }
};

/// Screen readers first hear of a notification and ask later what it says.
[[maybe_unused]] constexpr std::chrono::seconds notificationLifetime{5};

QAccessibleInterface* make(const QString&, QObject* object) {
  if (auto* button = dynamic_cast<DisclosureButton*>(object)) return new DisclosureInterface(button);
  if (auto* code = dynamic_cast<QRView*>(object)) return new QAccessibleWidget(code, QAccessible::Graphic);
  if (auto* notification = dynamic_cast<Notification*>(object)) {
    return new QAccessibleWidget(notification, QAccessible::Notification);
  }
  return nullptr;
}

}  // namespace

void install() {
  QAccessible::installFactory(make);
}

void announce(QWidget* window, const QString& text) {
#if QT_VERSION >= QT_VERSION_CHECK(6, 8, 0)
  QAccessibleAnnouncementEvent event(window, text);
  QAccessible::updateAccessibility(&event);
#else
  auto* notification = new Notification(window, text);
  QTimer::singleShot(notificationLifetime, notification, &QObject::deleteLater);
  notification->show();
#endif
}

}  // namespace orvel::PanelAccessibility
