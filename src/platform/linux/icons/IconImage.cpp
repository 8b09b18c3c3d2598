#include "platform/linux/icons/IconImage.hpp"

#include "platform/linux/files/Files.hpp"

#include <QBuffer>
#include <QByteArray>
#include <QByteArrayView>
#include <QImage>
#include <QImageReader>
#include <QPainter>
#include <QString>
#include <QSvgRenderer>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>
#include <QtEndian>
#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

namespace orvel {
namespace {

constexpr QByteArrayView signature("\x89PNG\r\n\x1a\n");
constexpr QByteArrayView last("IEND");
constexpr std::array<QByteArrayView, 5> kept{"IHDR", "PLTE", "tRNS", "IDAT", last};

constexpr qsizetype lengthSize = 4;
constexpr qsizetype typeSize = 4;
constexpr qsizetype emptyChunk = lengthSize + typeSize + 4;  // with its checksum

constexpr qsizetype largestDrawing = qsizetype{2} << 20;
constexpr std::int64_t mostElements = 20'000;
constexpr qsizetype longestStyle = qsizetype{4} << 10;
constexpr qsizetype mostStyling = qsizetype{8} << 20;  // their length, for each element and letter of its class
constexpr int deepestElement = 128;

QString referenceIn(const QXmlStreamAttributes& attributes) {
  for (const QXmlStreamAttribute& attribute : attributes) {
    if (attribute.name() == QLatin1String("href")) return attribute.value().toString();
  }
  return {};
}

/// Counts what has to be drawn. A part may be used many times, and use others that are used many times: a few lines can
/// ask for billions of shapes.
class DrawingCost {
 public:
  void begin(const QString& identifier, const QString& used) {
    Part& part = parts_.emplace_back();
    part.elements = 1;
    if (used.startsWith(QLatin1Char('#'))) part.used.push_back(used.mid(1));
    if (!identifier.isEmpty()) named_.try_emplace(identifier, parts_.size() - 1);
    open_.push_back(parts_.size() - 1);
    if (open_.size() > 1) parts_[open_[open_.size() - 2]].children.push_back(parts_.size() - 1);
  }

  void end() { open_.pop_back(); }

  bool isModest() { return parts_.empty() || costOf(0, 0) <= mostElements; }

 private:
  struct Part {
    std::int64_t elements = 0;
    std::vector<std::size_t> children;
    std::vector<QString> used;
    std::int64_t cost = 0;  // 0 until it is known
  };

  std::int64_t costOf(std::size_t index, int depth) {
    // Deeper than any element can stand: parts that use themselves.
    if (depth > 2 * deepestElement) return mostElements + 1;
    if (parts_[index].cost > 0) return parts_[index].cost;
    std::int64_t cost = parts_[index].elements;
    for (const std::size_t child : parts_[index].children) cost = bounded(cost + costOf(child, depth + 1));
    for (const QString& name : parts_[index].used) {
      const auto used = named_.find(name);
      if (used != named_.end()) cost = bounded(cost + costOf(used->second, depth + 1));
    }
    parts_[index].cost = cost;
    return cost;
  }

  static std::int64_t bounded(std::int64_t cost) { return std::min(cost, mostElements + 1); }

  std::vector<Part> parts_;
  std::map<QString, std::size_t> named_;
  std::vector<std::size_t> open_;
};

bool isLeftOut(const QXmlStreamReader& reader) {
  const auto name = reader.name();
  // A picture in the file itself may be a drawing again, with all that is left out here.
  return name == QLatin1String("image") || name == QLatin1String("feImage") || name.startsWith(QLatin1String("text")) ||
         name == QLatin1String("font") || name == QLatin1String("foreignObject") || name == QLatin1String("script");
}

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

std::optional<QByteArray> plainPNG(const QByteArray& png) {
  if (!png.startsWith(signature)) return std::nullopt;
  QByteArray plain = signature.toByteArray();
  for (QByteArrayView rest = QByteArrayView(png).sliced(signature.size()); rest.size() >= emptyChunk;) {
    const qsizetype size = emptyChunk + qsizetype{qFromBigEndian<quint32>(rest.data())};
    if (size > rest.size()) return std::nullopt;
    const auto type = rest.sliced(lengthSize, typeSize);
    if (std::find(kept.begin(), kept.end(), type) != kept.end()) plain.append(rest.first(size));
    if (type == last) return plain;
    rest = rest.sliced(size);
  }
  return std::nullopt;
}

std::optional<QByteArray> plainSVG(const QByteArray& svg) {
  if (svg.size() > largestDrawing || svg.startsWith("\x1f\x8b")) return std::nullopt;
  QByteArray plain;
  QXmlStreamReader reader(svg);
  QXmlStreamWriter writer(&plain);
  DrawingCost cost;
  int depth = 0;
  int elements = 0;
  bool isStyle = false;
  qsizetype styles = 0;
  qsizetype styled = 0;
  while (!reader.atEnd()) {
    reader.readNext();
    if (reader.isStartElement() && isLeftOut(reader)) {
      reader.skipCurrentElement();
    } else if (reader.isStartElement()) {
      if (++depth > deepestElement || ++elements > mostElements) return std::nullopt;
      isStyle = reader.name() == QLatin1String("style");
      styled += 1 + reader.attributes().value(QLatin1String("class")).size();
      const bool isUse = reader.name() == QLatin1String("use");
      cost.begin(reader.attributes().value(QLatin1String("id")).toString(),
                 isUse ? referenceIn(reader.attributes()) : QString());
      writer.writeCurrentToken(reader);
    } else if (reader.isEndElement()) {
      --depth;
      isStyle = false;
      cost.end();
      writer.writeCurrentToken(reader);
    } else if (reader.isCharacters() && isStyle) {
      if ((styles += reader.text().size()) > longestStyle) return std::nullopt;
      writer.writeCharacters(reader.text().toString());
    }
  }
  if (reader.hasError() || !cost.isModest() || styles * styled > mostStyling) return std::nullopt;
  return plain;
}

std::optional<std::vector<std::uint8_t>> drawIcon(const std::string& path, int pixels) {
  const QImage square = draw(path, pixels);
  QByteArray bytes;
  QBuffer buffer(&bytes);
  if (!showsSomething(square) || !buffer.open(QIODevice::WriteOnly) || !square.save(&buffer, "PNG"))
    return std::nullopt;
  return std::vector<std::uint8_t>(bytes.begin(), bytes.end());
}

}  // namespace orvel
