#pragma once

#include <cstddef>
#include <vector>

namespace orvel {

/// A square QR code: one pixel per module and a size in points, so that whoever shows it draws sharp modules at the
/// resolution of the screen. Without the light margin that a code needs around it.
struct QRImage {
  double side = 0;  ///< Points.
  std::size_t modulesPerSide = 0;
  std::vector<bool> darkModules{};  ///< Row by row from the left top.

  bool isDark(std::size_t column, std::size_t row) const { return darkModules[row * modulesPerSide + column]; }

  friend bool operator==(const QRImage&, const QRImage&) = default;
};

}  // namespace orvel
