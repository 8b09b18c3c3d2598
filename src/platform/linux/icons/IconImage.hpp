#pragma once

#include <QByteArray>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orvel {

/// The picture in `png` without all that is not needed to draw it, such as packed texts, which may unpack to anything.
/// Nothing when it is no PNG, or damaged. Threads: any.
std::optional<QByteArray> plainPNG(const QByteArray& png);

/// The drawing in `svg` without what a picture of a few pixels does not need and a worker thread cannot draw: texts
/// and pictures. Nothing when it is damaged, packed, or so intricate that drawing it would take long.
/// Threads: any.
std::optional<QByteArray> plainSVG(const QByteArray& svg);

/// Draws the picture in a PNG, SVG or XPM file into the middle of a transparent square of `pixels`, as large as it
/// fits, and returns that as a PNG. Nothing when the file is no such picture, or would take much time or memory.
/// Threads: any.
std::optional<std::vector<std::uint8_t>> drawIcon(const std::string& path, int pixels);

}  // namespace orvel
