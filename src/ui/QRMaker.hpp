#pragma once

#include <cstddef>
#include <optional>
#include <string>
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

namespace QRMaker {

/// The text's bytes as a QR code of error-correction level M, `side` points wide and high. Nothing for an empty text
/// and for one that no QR code can hold. Threads: any.
std::optional<QRImage> image(const std::string& text, double side);

}  // namespace QRMaker

namespace QRText {

/// The code with its light margin for a terminal, in lines that each show two rows of modules by half blocks.
/// `colored` sets black and white whatever the terminal's colours are; without it the terminal's ground has to be dark.
/// Threads: any.
std::string lines(const QRImage& image, bool colored);

}  // namespace QRText
}  // namespace orvel
