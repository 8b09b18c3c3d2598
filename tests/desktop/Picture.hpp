#pragma once

#include "base/SharedBytes.hpp"
#include "mirror/JPEGEncoder.hpp"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace orvel {

/// A picture of a test, each pixel 0xRRGGBB.
struct Picture {
  Picture() = default;
  Picture(int columns, int rows, std::uint32_t colour = 0)
      : width(columns), height(rows), pixels(static_cast<std::size_t>(columns) * rows, colour) {}

  /// A copy of what is in memory.
  explicit Picture(const PixelBuffer& buffer);

  std::uint32_t at(int x, int y) const { return pixels[static_cast<std::size_t>(y) * width + x]; }
  std::uint32_t& at(int x, int y) { return pixels[static_cast<std::size_t>(y) * width + x]; }
  void fill(int x, int y, int columns, int rows, std::uint32_t colour);

  /// The same in memory, for as long as this lives and is not changed.
  PixelBuffer buffer() const;

  friend bool operator==(const Picture&, const Picture&) = default;

  int width = 0;
  int height = 0;
  std::vector<std::uint32_t> pixels;
};

/// What a JPEG image shows, as another decoder than ours sees it. Nothing when it sees none.
std::optional<Picture> decodedJPEG(const SharedBytes& image);

/// The picture in another size: each pixel is the exact average of the area that it covers.
Picture averaged(const Picture& picture, int width, int height);

/// How alike the brightness of two pictures of one size is (SSIM, windows of 8 by 8): 1 is the same.
double similarity(const Picture& one, const Picture& other);

/// Small black print on white paper, and a menu bar. The same every time.
Picture pageOfText(int width, int height);

/// Soft colours and edges, and a little noise, as in a photograph. The same every time.
Picture photograph(int width, int height);

}  // namespace orvel
