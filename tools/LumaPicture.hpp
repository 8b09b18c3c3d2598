#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace orvel::phone {

/// How bright each pixel of a picture is, row by row. Threads: as its pixels.
struct LumaPicture {
  std::span<const std::uint8_t> pixels;  ///< Exactly width times height.
  int width = 0;
  int height = 0;

  /// One row, from the top.
  std::span<const std::uint8_t> row(int y) const {
    return pixels.subspan(static_cast<std::size_t>(y) * static_cast<std::size_t>(width),
                          static_cast<std::size_t>(width));
  }
};

}  // namespace orvel::phone
