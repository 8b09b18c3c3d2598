#include "platform/linux/SystemJPEGEncoder.hpp"

#include <libyuv/convert_from_argb.h>
#include <turbojpeg.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstring>

namespace orvel {
namespace {

constexpr int longestSide = 16384;

int scaleOf(double quality) {
  const double percent = quality > 0 ? 100 * std::min(quality, 1.0) : 0;
  return std::max(1, static_cast<int>(std::lround(percent)));
}

bool canEncode(const PixelBuffer& picture) {
  const auto isSide = [](int length) { return length > 0 && length <= longestSide; };
  return picture.bytes != nullptr && isSide(picture.width) && isSide(picture.height) &&
         picture.bytesPerRow >= 4 * static_cast<std::size_t>(picture.width);
}

}  // namespace

/// The picture as brightness and two colours. The brightness is even in width and height, as the colours have half its
/// resolution.
struct SystemJPEGEncoder::Planes {
  std::array<std::uint8_t*, 3> bytes = {};
  std::array<int, 3> bytesPerRow = {};
  int rows = 0;
};

void SystemJPEGEncoder::CloseCompressor::operator()(void* compressor) const noexcept {
  tjDestroy(compressor);
}

SystemJPEGEncoder::SystemJPEGEncoder() : compressor_(tjInitCompress()) {}

SystemJPEGEncoder::~SystemJPEGEncoder() = default;

std::optional<SharedBytes> SystemJPEGEncoder::encode(const PixelBuffer& picture, double quality) {
  if (!compressor_ || !canEncode(picture)) return std::nullopt;
  const Planes planes = planesFor(picture);
  if (!convert(picture, planes)) return std::nullopt;

  // Room for the worst case costs only what is written of it, and the image needs no copy.
  unsigned long size = tjBufSize(picture.width, picture.height, TJSAMP_420);
  const auto image = std::make_shared_for_overwrite<std::uint8_t[]>(size);
  unsigned char* bytes = image.get();
  std::array<const unsigned char*, 3> sources = {planes.bytes[0], planes.bytes[1], planes.bytes[2]};
  const int failed =
      tjCompressFromYUVPlanes(compressor_.get(), sources.data(), picture.width, planes.bytesPerRow.data(),
                              picture.height, TJSAMP_420, &bytes, &size, scaleOf(quality), TJFLAG_NOREALLOC);
  if (failed != 0) return std::nullopt;
  return SharedBytes{.data = {image, bytes}, .size = size};
}

SystemJPEGEncoder::Planes SystemJPEGEncoder::planesFor(const PixelBuffer& picture) {
  const int halfWidth = (picture.width + 1) / 2;
  const int halfHeight = (picture.height + 1) / 2;
  const auto colourSize = static_cast<std::size_t>(halfWidth) * static_cast<std::size_t>(halfHeight);
  memory_.resize(6 * colourSize);
  return {.bytes = {memory_.data(), memory_.data() + 4 * colourSize, memory_.data() + 5 * colourSize},
          .bytesPerRow = {2 * halfWidth, halfWidth, halfWidth},
          .rows = 2 * halfHeight};
}

bool SystemJPEGEncoder::convert(const PixelBuffer& picture, const Planes& planes) {
  const int failed = libyuv::ARGBToJ420(picture.bytes, static_cast<int>(picture.bytesPerRow), planes.bytes[0],
                                        planes.bytesPerRow[0], planes.bytes[1], planes.bytesPerRow[1], planes.bytes[2],
                                        planes.bytesPerRow[2], picture.width, picture.height);
  if (failed != 0) return false;
  const auto bytesPerRow = static_cast<std::size_t>(planes.bytesPerRow[0]);
  if (picture.width % 2 != 0) {
    std::uint8_t* rowEnd = planes.bytes[0] + bytesPerRow;
    for (int row = 0; row < picture.height; ++row, rowEnd += bytesPerRow) rowEnd[-1] = rowEnd[-2];
  }
  if (picture.height != planes.rows) {
    std::uint8_t* last = planes.bytes[0] + bytesPerRow * static_cast<std::size_t>(picture.height);
    std::memcpy(last, last - bytesPerRow, bytesPerRow);
  }
  return true;
}

}  // namespace orvel
