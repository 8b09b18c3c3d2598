#include "ui/ToggleSwitch.hpp"

#include <QPainter>

namespace orvel {
namespace {

constexpr double trackRatio = 1.75;
constexpr double knobInset = 2;
constexpr double focusOutset = 1;

}  // namespace

ToggleSwitch::ToggleSwitch(const QString& text, const Colors& colors) : QCheckBox(text), colors_(colors) {
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize ToggleSwitch::sizeHint() const {
  return {fontMetrics().horizontalAdvance(text()) + static_cast<int>(track().width()) + 2 * markRoom,
          fontMetrics().height() + 2 * markRoom};
}

QRectF ToggleSwitch::track() const {
  const double height = fontMetrics().height();
  const double length = height * trackRatio;
  return {width() - length - markRoom, (this->height() - height) / 2, length, height};
}

bool ToggleSwitch::hitButton(const QPoint& place) const {
  return rect().contains(place);
}

void ToggleSwitch::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(colors_.text);
  painter.drawText(rect(), Qt::AlignVCenter | Qt::AlignLeft, text());
  const QRectF track = this->track();
  const double radius = track.height() / 2;
  if (hasFocus()) {
    painter.setPen(QPen(colors_.focus, 2));
    painter.setBrush(Qt::NoBrush);
    const QRectF ring = track.adjusted(-focusOutset, -focusOutset, focusOutset, focusOutset);
    painter.drawRoundedRect(ring, radius + focusOutset, radius + focusOutset);
  }
  painter.setPen(Qt::NoPen);
  painter.setBrush(isChecked() ? colors_.on : colors_.off);
  painter.drawRoundedRect(track, radius, radius);
  const double knob = track.height() - 2 * knobInset;
  const double left = isChecked() ? track.right() - knobInset - knob : track.left() + knobInset;
  painter.setBrush(Qt::white);
  painter.drawEllipse(QRectF(left, track.top() + knobInset, knob, knob));
}

}  // namespace orvel
