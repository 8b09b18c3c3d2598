#include "platform/linux/capture/FrameScaler.hpp"

#include <libyuv/planar_functions.h>

#include <cstddef>

namespace orvel {
namespace {

std::size_t bytesOf(int pixels) {
  return 4 * static_cast<std::size_t>(pixels);
}

}  // namespace

FrameScaler::FrameScaler(int width, int height) : width_(width), height_(height) {}

PixelBuffer FrameScaler::scale(const PixelBuffer& picture) {
  if (picture.width == width_ && picture.height == height_) return picture;
  prepareFor(picture);
  for (int y = 0; y < height_; ++y) {
    averageRows(picture, y);
    columns_.average(row_.data(), result_.data() + bytesOf(width_) * static_cast<std::size_t>(y));
  }
  return {result_.data(), bytesOf(width_), width_, height_};
}

void FrameScaler::prepareFor(const PixelBuffer& picture) {
  if (columns_.sourceLength() != picture.width) columns_ = ColumnAverage(picture.width, width_);
  if (rows_.sourceLength() != picture.height) rows_ = PixelShares(picture.height, height_);
  row_.resize(columns_.bytesOfRow());
  result_.resize(bytesOf(width_) * static_cast<std::size_t>(height_));
}

/// Makes one row of those that a row of the target covers.
void FrameScaler::averageRows(const PixelBuffer& picture, int row) {
  const PixelShares::Share share = rows_.of(row);
  const std::uint8_t* next = picture.bytes + picture.bytesPerRow * static_cast<std::size_t>(share.first);
  const std::uint8_t* average = next;
  int sum = 0;
  for (const int weight : share.weights) {
    sum += weight;
    libyuv::InterpolatePlane(average, 0, next, 0, row_.data(), 0, static_cast<int>(bytesOf(picture.width)), 1,
                             sum > weight ? PixelShares::whole * weight / sum : 0);
    average = row_.data();
    next += picture.bytesPerRow;
  }
}

}  // namespace orvel
