#include "platform/linux/capture/FrameScaler.hpp"

#include <libyuv/scale_argb.h>

#include <algorithm>
#include <cstddef>

namespace orvel {
namespace {

/// Into memory that may be the picture's own, when the picture becomes smaller.
PixelBuffer scaled(const PixelBuffer& picture, int width, int height, libyuv::FilterMode filter,
                   std::vector<std::uint8_t>& memory) {
  const auto bytesPerRow = 4 * static_cast<std::size_t>(width);
  memory.resize(std::max(memory.size(), bytesPerRow * static_cast<std::size_t>(height)));
  libyuv::ARGBScale(picture.bytes, static_cast<int>(picture.bytesPerRow), picture.width, picture.height, memory.data(),
                    static_cast<int>(bytesPerRow), width, height, filter);
  return {memory.data(), bytesPerRow, width, height};
}

}  // namespace

FrameScaler::FrameScaler(int width, int height) : width_(width), height_(height) {}

PixelBuffer FrameScaler::scale(const PixelBuffer& picture) {
  PixelBuffer current = picture;
  while (isTwiceTooLarge(current)) {
    // Of an odd row or column half a pixel would be left.
    current.width -= current.width % 2;
    current.height -= current.height % 2;
    current = scaled(current, current.width / 2, current.height / 2, libyuv::kFilterBox, half_);
  }
  if (current.width == width_ && current.height == height_) return current;
  return scaled(current, width_, height_, libyuv::kFilterBilinear, result_);
}

bool FrameScaler::isTwiceTooLarge(const PixelBuffer& picture) const {
  return picture.width >= 2 * width_ && picture.height >= 2 * height_;
}

}  // namespace orvel
