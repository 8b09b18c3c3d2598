#pragma once

#include "base/SharedBytes.hpp"
#include "mirror/PixelBuffer.hpp"

#include <optional>

namespace orvel {

/// Makes JPEG images. Threads: one at a time.
class JPEGEncoder {
 public:
  virtual ~JPEGEncoder() = default;

  /// The picture as a whole JPEG image. `quality` is from 0, the smallest, to 1, the best. Nothing when it fails.
  virtual std::optional<SharedBytes> encode(const PixelBuffer& picture, double quality) = 0;
};

}  // namespace orvel
