#pragma once

#include <cstddef>
#include <cstdint>

namespace orvel {

/// A picture in memory that somebody else keeps: rows from the top, four bytes a pixel, blue, green, red and one that
/// means nothing.
struct PixelBuffer {
  const std::uint8_t* bytes = nullptr;
  std::size_t bytesPerRow = 0;
  int width = 0;
  int height = 0;
};

}  // namespace orvel
