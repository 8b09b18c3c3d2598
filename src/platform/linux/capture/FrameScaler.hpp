#pragma once

#include "mirror/PixelBuffer.hpp"
#include "platform/linux/capture/ColumnAverage.hpp"
#include "platform/linux/capture/PixelShares.hpp"

#include <cstdint>
#include <vector>

namespace orvel {

/// Brings pictures to one size: each pixel becomes the average of all that it covers, which keeps small print legible.
/// Its memory stays for the next picture. Threads: one at a time.
class FrameScaler {
 public:
  FrameScaler(int width, int height);

  /// The picture in that size, valid until the next call. It is the picture itself when that has the size already.
  PixelBuffer scale(const PixelBuffer& picture);

 private:
  void prepareFor(const PixelBuffer& picture);
  void averageRows(const PixelBuffer& picture, int row, std::vector<std::uint8_t>& target) const;

  const int width_;
  const int height_;
  ColumnAverage columns_;
  PixelShares rows_;
  std::vector<std::uint8_t> row_;  // of the width of the picture, but already averaged with its neighbours
  std::vector<std::uint8_t> nextRow_;
  std::vector<std::uint8_t> result_;
};

}  // namespace orvel
