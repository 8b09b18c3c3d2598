#pragma once

#include "tools/LumaPicture.hpp"

#include <chrono>
#include <cstdint>
#include <optional>

namespace orvel::phone {

/// A moment by a computer's wall clock.
using WallTime = std::chrono::sys_time<std::chrono::milliseconds>;

/// A moment as a pattern of dark and light blocks, which can be read from a picture of it. A finder of vertical bars
/// stands at either end; between them are the milliseconds since 1970 in binary, row by row, and their checksum.
///
/// Threads: as a value.
class TimeStrip {
 public:
  static constexpr int columns = 30;  ///< Blocks from left to right, a light margin included.
  static constexpr int rows = 7;      ///< Blocks from top to bottom, likewise.

  explicit TimeStrip(WallTime time);

  bool isDark(int column, int row) const;

  /// The moment that a strip in this picture shows, wherever it stands and whatever its size, if its blocks are at
  /// least four pixels wide and more or less squares. The latest, if there are several: a screen may show a picture of
  /// itself. The work is bounded, whatever the picture.
  static std::optional<WallTime> find(const LumaPicture& picture);

 private:
  std::uint64_t bits_;
};

}  // namespace orvel::phone
