#include "ui/QRMaker.hpp"

#include <qrencode.h>

#include <array>
#include <cstddef>
#include <memory>

namespace orvel::QRMaker {
namespace {

constexpr int smallestFittingVersion = 0;
constexpr unsigned char darkBit = 1;

struct FreeCode {
  void operator()(QRcode* code) const noexcept { QRcode_free(code); }
};

}  // namespace

std::optional<QRImage> image(const std::string& text, double side) {
  if (text.empty()) return std::nullopt;
  const std::unique_ptr<QRcode, FreeCode> code(QRcode_encodeData(static_cast<int>(text.size()),
                                                                 reinterpret_cast<const unsigned char*>(text.data()),
                                                                 smallestFittingVersion, QR_ECLEVEL_M));
  if (!code) return std::nullopt;
  QRImage image{.side = side, .modulesPerSide = static_cast<std::size_t>(code->width)};
  const std::size_t count = image.modulesPerSide * image.modulesPerSide;
  image.darkModules.reserve(count);
  for (std::size_t i = 0; i < count; ++i) image.darkModules.push_back((code->data[i] & darkBit) != 0);
  return image;
}

}  // namespace orvel::QRMaker

namespace orvel::QRText {
namespace {

constexpr std::size_t margin = 4;  // modules, as scanners expect it

/// By whether the upper and the lower module is light, in light on dark.
constexpr std::array blocks{" ", "\u2584", "\u2580", "\u2588"};

constexpr const char* whiteOnBlack = "\033[38;5;231;48;5;16m";
constexpr const char* terminalColors = "\033[0m";

bool isLight(const QRImage& image, std::size_t column, std::size_t row) {
  const std::size_t end = margin + image.modulesPerSide;
  if (column < margin || row < margin || column >= end || row >= end) return true;
  return !image.isDark(column - margin, row - margin);
}

}  // namespace

std::string lines(const QRImage& image, bool colored) {
  const std::size_t side = image.modulesPerSide + 2 * margin;
  std::string text;
  for (std::size_t row = 0; row < side; row += 2) {
    if (colored) text += whiteOnBlack;
    for (std::size_t column = 0; column < side; ++column) {
      const bool upper = isLight(image, column, row);
      const bool lower = row + 1 < side && isLight(image, column, row + 1);
      text += blocks.at((upper ? 2U : 0U) + (lower ? 1U : 0U));
    }
    if (colored) text += terminalColors;
    text += '\n';
  }
  return text;
}

}  // namespace orvel::QRText
