#pragma once

#include "base/SharedBytes.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>

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

/// Makes JPEG images. Threads: one at a time.
class JPEGEncoder {
 public:
  virtual ~JPEGEncoder() = default;

  /// The picture as a whole JPEG image. `quality` is from 0, the smallest, to 1, the best. Nothing when it fails.
  virtual std::optional<SharedBytes> encode(const PixelBuffer& picture, double quality) = 0;
};

}  // namespace orvel
