#include "platform/linux/icons/PlainPNG.hpp"

#include <QByteArrayView>
#include <QtEndian>
#include <algorithm>
#include <array>

namespace orvel {
namespace {

constexpr QByteArrayView signature("\x89PNG\r\n\x1a\n");
constexpr QByteArrayView last("IEND");
constexpr std::array<QByteArrayView, 5> kept{"IHDR", "PLTE", "tRNS", "IDAT", last};

constexpr qsizetype lengthSize = 4;
constexpr qsizetype typeSize = 4;
constexpr qsizetype emptyChunk = lengthSize + typeSize + 4;  // with its checksum

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

}  // namespace orvel
