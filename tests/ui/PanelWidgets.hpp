#pragma once

#include <QAbstractButton>
#include <QCoreApplication>
#include <QEvent>
#include <QLabel>
#include <QLineEdit>
#include <QString>
#include <QWidget>
#include <string>
#include <vector>

namespace orvel {

/// What a person sees and presses in a tree of widgets.
struct PanelWidgets {
  QWidget& root;

  /// What was let go of goes for good, and what was asked for later happens.
  static void settle() {
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
  }

  QAbstractButton* button(const QString& text) const {
    settle();
    for (auto* button : root.findChildren<QAbstractButton*>()) {
      if (button->text() == text && button->isVisibleTo(&root)) return button;
    }
    return nullptr;
  }

  bool press(const QString& text) const {
    QAbstractButton* found = button(text);
    if (found == nullptr || !found->isEnabled()) return false;
    found->click();
    settle();
    return true;
  }

  /// Labels, and texts that can be copied, in the order in which screen readers read them.
  std::vector<std::string> texts() const {
    settle();
    std::vector<std::string> texts;
    for (const auto* widget : root.findChildren<QWidget*>()) {
      if (!widget->isVisibleTo(&root)) continue;
      if (const auto* label = qobject_cast<const QLabel*>(widget)) texts.push_back(label->text().toStdString());
      if (const auto* field = qobject_cast<const QLineEdit*>(widget)) texts.push_back(field->text().toStdString());
    }
    return texts;
  }
};

}  // namespace orvel
