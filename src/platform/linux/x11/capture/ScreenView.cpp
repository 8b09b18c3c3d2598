#include "platform/linux/x11/capture/ScreenView.hpp"

#include <utility>

namespace orvel {

ScreenView::ScreenView(const X11Connection& connection, std::size_t display, const ScreenFormat& format, int width,
                       int height)
    : connection_(connection), format_(format), watch_(connection, display), scaler_(width, height) {}

bool ScreenView::update() {
  watch_.takeEvents();
  const PixelRect& area = watch_.askArea();
  const bool hasMoved = image_ ? image_->area() != area : !area.isEmpty();
  if (hasMoved) moveTo(area);
  if (!image_) return false;
  const bool isDamaged = takeDamage();
  return cursorHasChanged() || isDamaged || hasMoved;
}

void ScreenView::moveTo(const PixelRect& area) {
  image_.reset();
  previous_.reset();
  if (area.isEmpty()) return;
  image_ = std::make_unique<ScreenImage>(connection_, format_, area);
  if (!watch_.reportsDamage()) previous_ = std::make_unique<ScreenImage>(connection_, format_, area);
  stale_ = {0, area.height};
}

bool ScreenView::takeDamage() {
  if (!watch_.reportsDamage()) return looksDifferent();
  const PixelRect damage = watch_.takeDamage(image_->area());
  if (damage.isEmpty()) return false;
  const int top = damage.y - image_->area().y;
  stale_ = stale_.unionWith({top, top + damage.height});
  return true;
}

bool ScreenView::looksDifferent() {
  if (!previous_->fetch({0, previous_->area().height}) || previous_->showsTheSameAs(*image_)) return false;
  std::swap(image_, previous_);
  stale_ = {};
  return true;
}

bool ScreenView::cursorHasChanged() {
  const Cursor before = std::exchange(cursor_, watch_.askCursor());
  const auto isInside = [&](const Cursor& cursor) { return !cursor.area().intersectedWith(image_->area()).isEmpty(); };
  return cursor_ != before && (isInside(cursor_) || isInside(before));
}

const PixelBuffer* ScreenView::picture() {
  if (!image_->fetch(stale_)) return nullptr;
  stale_ = {};
  overlay_.draw(cursor_, *image_);
  picture_ = scaler_.scale({image_->bytes(), image_->bytesPerRow(), image_->area().width, image_->area().height});
  return &picture_;
}

void ScreenView::releasePicture() {
  overlay_.erase(*image_);
}

}  // namespace orvel
