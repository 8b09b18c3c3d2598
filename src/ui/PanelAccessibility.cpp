#include "ui/PanelAccessibility.hpp"

#include "ui/Announcement.hpp"
#include "ui/DisclosureButton.hpp"
#include "ui/QRView.hpp"

#include <QAccessible>
#include <QAccessibleWidget>

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

QAccessibleInterface* make(const QString&, QObject* object) {
  if (auto* button = dynamic_cast<DisclosureButton*>(object)) return new DisclosureInterface(button);
  if (auto* code = dynamic_cast<QRView*>(object)) return new QAccessibleWidget(code, QAccessible::Graphic);
  if (auto* announcement = dynamic_cast<Announcement*>(object)) {
    return new QAccessibleWidget(announcement, QAccessible::Notification);
  }
  return nullptr;
}

}  // namespace

void install() {
  QAccessible::installFactory(make);
}

}  // namespace orvel::PanelAccessibility
