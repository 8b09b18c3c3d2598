#include "platform/linux/x11/capture/CursorOverlay.hpp"

#include "platform/linux/x11/capture/ScreenImage.hpp"

#include <algorithm>
#include <cstddef>

namespace orvel {
namespace {

constexpr std::uint32_t opaque = 255;

std::uint8_t* placeOf(int x, int y, ScreenImage& image) {
  return image.bytes() + image.bytesPerRow() * static_cast<std::size_t>(y - image.area().y) +
         4 * static_cast<std::size_t>(x - image.area().x);
}

/// The pixel is one of a cursor, the colours already multiplied by alpha.
void blend(std::uint32_t pixel, std::uint8_t* target) {
  const std::uint32_t rest = opaque - (pixel >> 24);
  for (int channel = 0; channel < 3; ++channel) {
    const std::uint32_t colour = pixel >> (8 * channel) & 0xff;
    target[channel] = static_cast<std::uint8_t>(std::min(opaque, colour + (target[channel] * rest + 127) / opaque));
  }
}

}  // namespace

void CursorOverlay::draw(const Cursor& cursor, ScreenImage& image) {
  const PixelRect whole = cursor.area();
  covered_ = whole.intersectedWith(image.area());
  background_.clear();
  if (covered_.isEmpty()) return;
  const auto rowBytes = 4 * static_cast<std::size_t>(covered_.width);
  for (int y = covered_.y; y < covered_.y + covered_.height; ++y) {
    std::uint8_t* target = placeOf(covered_.x, y, image);
    background_.insert(background_.end(), target, target + rowBytes);
    const std::uint32_t* source =
        cursor.shape->pixels.data() + std::ptrdiff_t{whole.width} * (y - whole.y) + (covered_.x - whole.x);
    for (int x = 0; x < covered_.width; ++x, target += 4) blend(source[x], target);
  }
}

void CursorOverlay::erase(ScreenImage& image) {
  const std::uint8_t* source = background_.data();
  const auto rowBytes = 4 * static_cast<std::ptrdiff_t>(covered_.width);
  for (int y = covered_.y; y < covered_.y + covered_.height; ++y, source += rowBytes) {
    std::copy_n(source, rowBytes, placeOf(covered_.x, y, image));
  }
  covered_ = {};
}

}  // namespace orvel
