#pragma once

#include "platform/linux/capture/PixelRect.hpp"

#include <cstdint>
#include <memory>
#include <vector>

namespace orvel {

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

}  // namespace orvel
