#include "ui/NameLabel.hpp"

#include <QFontMetrics>
#include <QPainter>

namespace orvel {
namespace {

constexpr qsizetype longestTip = 1024;

}  // namespace

NameLabel::NameLabel(const QString& name) {
  setTextFormat(Qt::PlainText);
  // Line breaks and the like are as good as spaces.
  setText(name.simplified());
  setToolTip(QStringLiteral("<span>%1</span>").arg(name.left(longestTip).toHtmlEscaped()));
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
