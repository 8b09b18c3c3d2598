#pragma once

#include "tools/LumaPicture.hpp"
#include "tools/TimeStrip.hpp"

#include <cstdint>
#include <optional>
#include <vector>

/// Made-up screens and pictures of them. Threads: any.
namespace orvel::phone {

/// A picture that owns its pixels.
struct Picture {
  int width = 0;
  int height = 0;
  std::vector<std::uint8_t> pixels;

  std::uint8_t& at(int x, int y) { return pixels[static_cast<std::size_t>(y * width + x)]; }
  std::uint8_t at(int x, int y) const { return pixels[static_cast<std::size_t>(y * width + x)]; }
  LumaPicture view() const { return {pixels, width, height}; }
};

/// A picture of one brightness.
Picture uniform(int width, int height, std::uint8_t brightness);

/// Its left upper part.
Picture cropped(const Picture& picture, int width, int height);

/// A screen on which a time strip may stand.
struct Scene {
  std::optional<WallTime> time = std::nullopt;
  int left = 0;
  int top = 0;
  int block = 32;                                ///< The side of a block of the strip, in pixels.
  std::optional<unsigned> noise = std::nullopt;  ///< The seed of what is around the strip; grey when there is none.

  /// The screen as a mirror scales it down.
  Picture picture(double scale = 1) const { return picture(scale, scale); }
  Picture picture(double scaleX, double scaleY) const;
};

/// Makes a block of the strip on an unscaled picture of the scene dark if it was light, and the other way round.
void invertBlock(Picture& picture, const Scene& scene, int column, int row);

}  // namespace orvel::phone
