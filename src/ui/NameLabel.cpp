#include "ui/NameLabel.hpp"

#include <QFontMetrics>
#include <QPainter>

namespace orvel {
namespace {

constexpr qsizetype longestName = 1024;

}  // namespace

QString NameLabel::readable(const QString& name) {
  QString text = name.left(longestName).simplified();
  text.removeIf([](QChar character) { return character.category() == QChar::Other_Control; });
  return text;
}

NameLabel::NameLabel(const QString& name, const QString& description) {
  setTextFormat(Qt::PlainText);
  setText(readable(name));
  setAccessibleDescription(description);
  setToolTip(QStringLiteral("<span>%1</span>").arg(text().toHtmlEscaped()));
  setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
}

QSize NameLabel::minimumSizeHint() const {
  return {0, QLabel::minimumSizeHint().height()};
}

void NameLabel::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setPen(palette().color(foregroundRole()));
  painter.drawText(rect(), static_cast<int>(alignment()) | Qt::TextSingleLine,
                   fontMetrics().elidedText(text(), Qt::ElideRight, width()));
}

}  // namespace orvel
