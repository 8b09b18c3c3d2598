#include "platform/linux/tray/EmbeddedIcon.hpp"

#include "platform/linux/tray/EmbeddingTray.hpp"

#include <QBitmap>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>
#include <utility>

namespace orvel {
namespace {

constexpr int usualSide = 22;  // until the tray gives it another size
constexpr int leastSide = 16;

constexpr Qt::WindowFlags flags = Qt::Window | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint;

}  // namespace

EmbeddedIcon::EmbeddedIcon(const EmbeddingTray& tray, QIcon icon, std::function<void()> clicked)
    : QWidget(nullptr, flags), tray_(tray.ownership()), icon_(std::move(icon)), clicked_(std::move(clicked)) {
  setAttribute(Qt::WA_QuitOnClose, false);
  setAttribute(Qt::WA_AlwaysShowToolTips);
  setAttribute(Qt::WA_TranslucentBackground, tray.isTranslucent());
  setMinimumSize(leastSide, leastSide);
  resize(usualSide, usualSide);
  // The toolkit says of each of its windows that it can be embedded.
  tray.requestDock(static_cast<std::uint32_t>(winId()));
  show();
}

void EmbeddedIcon::setIcon(QIcon icon) {
  icon_ = std::move(icon);
  cutOut();
  update();
}

void EmbeddedIcon::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  icon_.paint(&painter, rect());
}

void EmbeddedIcon::resizeEvent(QResizeEvent*) {
  cutOut();
  // The toolkit may otherwise show what it drew for the former size.
  update();
}

/// Where the tray's windows cannot be translucent, it is seen around the icon all the same.
void EmbeddedIcon::cutOut() {
  if (testAttribute(Qt::WA_TranslucentBackground)) return;
  QPixmap shape(size());
  shape.fill(Qt::transparent);
  QPainter painter(&shape);
  icon_.paint(&painter, rect());
  painter.end();
  setMask(shape.mask());
}

void EmbeddedIcon::mousePressEvent(QMouseEvent*) {
  clicked_();
}

void EmbeddedIcon::mouseDoubleClickEvent(QMouseEvent*) {
  clicked_();
}

}  // namespace orvel
