#pragma once

#include <cstddef>
#include <optional>

namespace orvel {

class X11Connection;

/// How the X server lays out the pixels of its screen, as far as they can be used.
struct ScreenFormat {
  enum class Pixels {
    blueGreenRed,  ///< Four bytes a pixel, in the order of PixelBuffer.
    rgb565,        ///< Two bytes a pixel.
  };

  Pixels pixels = Pixels::blueGreenRed;

  /// Nothing when the screen has another one. Does not ask the server.
  static std::optional<ScreenFormat> of(const X11Connection& connection);

  /// Rows are padded to four bytes.
  std::size_t bytesPerRow(int width) const {
    const std::size_t bytesPerPixel = pixels == Pixels::rgb565 ? 2 : 4;
    return (static_cast<std::size_t>(width) * bytesPerPixel + 3) / 4 * 4;
  }
};

}  // namespace orvel
