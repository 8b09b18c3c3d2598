#include "platform/linux/capture/FrameScaler.hpp"

#include <libyuv/planar_functions.h>

#include <algorithm>
#include <cstddef>
#include <cstring>

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
  const auto target = [&](int y) { return result_.data() + bytesOf(width_) * static_cast<std::size_t>(y); };
  for (int y = 0; y < height_; y += 2) {
    const int next = std::min(y + 1, height_ - 1);
    averageRows(picture, y, row_);
    averageRows(picture, next, nextRow_);
    columns_.average({row_.data(), nextRow_.data()}, {target(y), target(next)});
  }
  return {result_.data(), bytesOf(width_), width_, height_};
}

void FrameScaler::prepareFor(const PixelBuffer& picture) {
  if (columns_.sourceLength() != picture.width) columns_ = ColumnAverage(picture.width, width_);
  if (rows_.sourceLength() != picture.height) rows_ = PixelShares(picture.height, height_);
  row_.resize(columns_.bytesOfRow());
  nextRow_.resize(columns_.bytesOfRow());
  result_.resize(bytesOf(width_) * static_cast<std::size_t>(height_));
}

/// Makes one row of those that a row of the target covers: mixes in one after the other.
void FrameScaler::averageRows(const PixelBuffer& picture, int row, std::vector<std::uint8_t>& target) const {
  const PixelShares::Share share = rows_.of(row);
  const std::uint8_t* next = picture.bytes + picture.bytesPerRow * static_cast<std::size_t>(share.first);
  const int bytes = static_cast<int>(bytesOf(picture.width));
  const std::uint8_t* average = next;
  int sum = share.weights.front();
  for (const int weight : share.weights.subspan(1)) {
    sum += weight;
    next += picture.bytesPerRow;
    libyuv::InterpolatePlane(average, 0, next, 0, target.data(), 0, bytes, 1, PixelShares::whole * weight / sum);
    average = target.data();
  }
  if (average != target.data()) std::memcpy(target.data(), average, static_cast<std::size_t>(bytes));
}

}  // namespace orvel
