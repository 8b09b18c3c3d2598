#include "ui/QRView.hpp"

#include "ui/QRImage.hpp"

#include <QPainter>
#include <cmath>

namespace orvel {
namespace {

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
