#include "ui/QRMaker.hpp"

#include <qrencode.h>

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
