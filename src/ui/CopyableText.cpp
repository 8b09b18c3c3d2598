#include "ui/CopyableText.hpp"

#include <QContextMenuEvent>
#include <QFontMetrics>
#include <QMenu>

namespace orvel {
namespace {

// What the toolkit leaves free around a text, and the mark of the keyboard's focus.
constexpr int sideRoom = 8;
constexpr int edgeRoom = 4;

}  // namespace

CopyableText::CopyableText(const QString& text, const QFont& font) : QLineEdit(text) {
  setFont(font);
  setReadOnly(true);
  setFrame(false);
  setAlignment(Qt::AlignHCenter);
}

QSize CopyableText::sizeHint() const {
  return {fontMetrics().horizontalAdvance(text()) + sideRoom, fontMetrics().height() + edgeRoom};
}

void CopyableText::contextMenuEvent(QContextMenuEvent* event) {
  // Whoever asks for the menu wants to copy all of it, unless a part is chosen.
  if (!hasSelectedText()) selectAll();
  QMenu* menu = createStandardContextMenu();
  menu->setAttribute(Qt::WA_DeleteOnClose);
  menu->setPalette(window()->palette());
  menu->popup(event->globalPos());
}

}  // namespace orvel
