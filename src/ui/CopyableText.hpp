#pragma once

#include <QLineEdit>

namespace orvel {

/// A text on one line that can be selected and copied by the mouse and by the keyboard, as wide as it is. Threads: the
/// main thread.
class CopyableText final : public QLineEdit {
 public:
  CopyableText(const QString& text, const QFont& font);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void contextMenuEvent(QContextMenuEvent* event) override;
};

}  // namespace orvel
