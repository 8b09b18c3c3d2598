#pragma once

#include "platform/linux/capture/Cursor.hpp"
#include "platform/linux/capture/ScreenImage.hpp"

#include <cstdint>
#include <vector>

namespace orvel {

/// Draws the cursor into an image of the screen, and takes it out again. Threads: one at a time.
class CursorOverlay {
 public:
  /// Draws what of it lies within the image.
  void draw(const Cursor& cursor, ScreenImage& image);

  /// Brings back what the cursor covers. The image is the one that it was drawn into. Harmless when it was not.
  void takeOut(ScreenImage& image);

 private:
  PixelRect covered_;
  std::vector<std::uint8_t> background_;
};

}  // namespace orvel
