#include "platform/linux/icons/IconImage.hpp"

#include "platform/linux/files/SmallFile.hpp"
#include "platform/linux/icons/PlainPNG.hpp"
#include "platform/linux/icons/PlainSVG.hpp"

#include <QBuffer>
#include <QByteArray>
#include <QImage>
#include <QImageReader>
#include <QPainter>
#include <QSvgRenderer>
#include <algorithm>
#include <cstddef>

namespace orvel {
namespace {

constexpr std::size_t largestFile = std::size_t{8} << 20;
constexpr int mostPixelsAside = 2048;

QImage emptySquare(int pixels) {
  QImage square(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
  square.fill(Qt::transparent);
  return square;
}

QImage drawVectors(const QByteArray& bytes, int pixels) {
  const auto plain = plainSVG(bytes);
  if (!plain) return {};
  QSvgRenderer renderer(*plain);
  if (!renderer.isValid()) return {};
  renderer.setAspectRatioMode(Qt::KeepAspectRatio);
  QImage square = emptySquare(pixels);
  QPainter painter(&square);
  renderer.render(&painter);
  return square;
}

QImage drawPixels(QByteArray bytes, const char* format, int pixels) {
  QBuffer buffer(&bytes);
  QImageReader reader(&buffer, format);
  // Before anything is unpacked: a small file may hold a picture that fills the memory.
  const QSize size = reader.size();
  if (size.isEmpty() || std::max(size.width(), size.height()) > mostPixelsAside) return {};
  const QImage picture = reader.read().convertToFormat(QImage::Format_ARGB32_Premultiplied);
  if (picture.isNull()) return {};
  const QImage fitting = picture.scaled(pixels, pixels, Qt::KeepAspectRatio, Qt::SmoothTransformation);
  QImage square = emptySquare(pixels);
  QPainter painter(&square);
  painter.drawImage((pixels - fitting.width()) / 2, (pixels - fitting.height()) / 2, fitting);
  return square;
}

QImage draw(const std::string& path, int pixels) {
  const auto content = readSmallFile(path, largestFile);
  if (!content) return {};
  const auto bytes = QByteArray::fromStdString(*content);
  if (path.ends_with(".svg")) return drawVectors(bytes, pixels);
  if (path.ends_with(".xpm")) return drawPixels(bytes, "xpm", pixels);
  const auto plain = plainPNG(bytes);
  return plain ? drawPixels(*plain, "png", pixels) : QImage();
}

/// An icon of nothing but what is left out, as texts are, would be an empty place in a list.
bool showsSomething(const QImage& square) {
  for (int y = 0; y < square.height(); ++y) {
    for (int x = 0; x < square.width(); ++x) {
      if (qAlpha(square.pixel(x, y)) != 0) return true;
    }
  }
  return false;
}

}  // namespace

std::optional<std::vector<std::uint8_t>> drawIcon(const std::string& path, int pixels) {
  const QImage square = draw(path, pixels);
  QByteArray bytes;
  QBuffer buffer(&bytes);
  if (!showsSomething(square) || !buffer.open(QIODevice::WriteOnly) || !square.save(&buffer, "PNG"))
    return std::nullopt;
  return std::vector<std::uint8_t>(bytes.begin(), bytes.end());
}

}  // namespace orvel
