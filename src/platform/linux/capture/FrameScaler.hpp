#pragma once

#include "mirror/PixelBuffer.hpp"

#include <cstdint>
#include <vector>

namespace orvel {

/// Brings pictures to one size. Its memory stays for the next picture. Threads: one at a time.
class FrameScaler {
 public:
  FrameScaler(int width, int height);

  /// The picture in that size, valid until the next call. It is the picture itself when that has the size already.
  PixelBuffer scale(const PixelBuffer& picture);

 private:
  bool isTwiceTooLarge(const PixelBuffer& picture) const;

  const int width_;
  const int height_;
  std::vector<std::uint8_t> half_;
  std::vector<std::uint8_t> result_;
};

}  // namespace orvel
