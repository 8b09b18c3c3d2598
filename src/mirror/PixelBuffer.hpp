#pragma once

#include <cstddef>
#include <cstdint>

namespace orvel {

/// A picture that somebody else keeps: rows from the top, four bytes a pixel, blue, green, red and one that means
/// nothing. Where the system has pictures of its own, which need not be in reach of this program, only `native` says
/// where it is, and only the encoder of that system can read it.
struct PixelBuffer {
  const std::uint8_t* bytes = nullptr;
  std::size_t bytesPerRow = 0;
  int width = 0;
  int height = 0;
  void* native = nullptr;
};

}  // namespace orvel
