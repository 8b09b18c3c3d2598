#pragma once

#include "platform/linux/capture/PixelRect.hpp"

#include <cstdint>
#include <memory>
#include <vector>

namespace orvel {

class ScreenImage;

/// What the cursor looks like. Its pixels are 0xAARRGGBB, the colours already multiplied by alpha.
struct CursorShape {
  int width = 0;
  int height = 0;
  int hotX = 0;
  int hotY = 0;
  std::vector<std::uint32_t> pixels;
};

/// The cursor at one moment, and where its hot spot is on the X screen. A change of shape makes a new one.
struct Cursor {
  std::shared_ptr<const CursorShape> shape;  // null when there is none
  int x = 0;
  int y = 0;

  /// What it covers of the screen.
  PixelRect area() const {
    if (!shape) return {};
    return {x - shape->hotX, y - shape->hotY, shape->width, shape->height};
  }

  friend bool operator==(const Cursor&, const Cursor&) = default;
};

/// Draws the cursor into an image of the screen, and erases it again. Threads: one at a time.
class CursorOverlay {
 public:
  /// Draws what of it lies within the image.
  void draw(const Cursor& cursor, ScreenImage& image);

  /// Brings back what the cursor covers. The image is the one that it was drawn into. Harmless when it was not.
  void erase(ScreenImage& image);

 private:
  PixelRect covered_;
  std::vector<std::uint8_t> background_;
};

}  // namespace orvel
