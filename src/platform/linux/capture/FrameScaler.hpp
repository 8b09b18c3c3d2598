#pragma once

#include "mirror/JPEGEncoder.hpp"

#include <cstdint>
#include <memory>
#include <vector>

namespace orvel {

/// Scales pictures to one size by area averaging (a box filter): each pixel becomes the average of all that it covers,
/// which keeps small print legible. Its memory stays for the next picture. Threads: one at a time.
class FrameScaler {
 public:
  FrameScaler(int width, int height);
  ~FrameScaler();
  FrameScaler(const FrameScaler&) = delete;
  FrameScaler& operator=(const FrameScaler&) = delete;

  /// The picture in that size, valid until the next call. It is the picture itself when that has the size already.
  PixelBuffer scale(const PixelBuffer& picture);

 private:
  class BoxFilter;
  class HorizontalScaler;

  void prepareFor(const PixelBuffer& picture);
  void scaleVertically(const PixelBuffer& picture, int row, std::vector<std::uint8_t>& target) const;

  const int width_;
  const int height_;
  std::unique_ptr<HorizontalScaler> horizontal_;  // both for the last picture; null before the first
  std::unique_ptr<BoxFilter> vertical_;
  std::vector<std::uint8_t> row_;  // of the width of the picture, but already scaled vertically
  std::vector<std::uint8_t> nextRow_;
  std::vector<std::uint8_t> result_;
};

}  // namespace orvel
