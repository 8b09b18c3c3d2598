#include "ui/Drawing.hpp"

#include <QPainter>
#include <utility>

namespace orvel {

Drawing::Drawing(int side, Paint paint) : paint_(std::move(paint)) {
  setFixedSize(side, side);
}

void Drawing::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  paint_(painter, rect());
}

}  // namespace orvel
