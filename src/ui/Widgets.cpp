#include "ui/Widgets.hpp"

#include "ui/QRMaker.hpp"

#include <QContextMenuEvent>
#include <QFontMetrics>
#include <QMenu>
#include <QPainter>
#include <cmath>
#include <utility>

namespace orvel {
namespace {

constexpr qsizetype longestName = 1024;

// What the toolkit leaves free around a text, and the mark of the keyboard's focus.
constexpr int sideRoom = 8;
constexpr int edgeRoom = 4;

constexpr double trackRatio = 1.75;
constexpr double knobInset = 2;
constexpr double focusOutset = 1;

constexpr double marginInModules = 4;
constexpr double cornerRadius = 8;

QImage imageOf(const QRImage& code) {
  const int side = static_cast<int>(code.modulesPerSide);
  QImage image(side, side, QImage::Format_RGB32);
  for (int row = 0; row < side; ++row) {
    for (int column = 0; column < side; ++column) {
      const bool isDark = code.isDark(static_cast<std::size_t>(column), static_cast<std::size_t>(row));
      image.setPixel(column, row, isDark ? qRgb(0, 0, 0) : qRgb(255, 255, 255));
    }
  }
  return image;
}

}  // namespace

Drawing::Drawing(int side, Paint paint) : paint_(std::move(paint)) {
  setFixedSize(side, side);
}

void Drawing::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  paint_(painter, rect());
}

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

QRView::QRView(const QRImage& code, double side)
    : modules_(imageOf(code)),
      side_(side),
      margin_(std::ceil(marginInModules * side / static_cast<double>(code.modulesPerSide))) {
  const int whole = static_cast<int>(std::lround(side_ + 2 * margin_));
  setFixedSize(whole, whole);
  setObjectName(name());
  setAccessibleName(QStringLiteral("QR code to scan in the app"));
}

void QRView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(Qt::white);
  painter.drawRoundedRect(rect(), cornerRadius, cornerRadius);
  // Without smoothing, so that each module stays sharp at any scale of the display.
  painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
  painter.drawImage(QRectF(margin_, margin_, side_, side_), modules_);
}

}  // namespace orvel
