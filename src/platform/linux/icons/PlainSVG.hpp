#pragma once

#include <QByteArray>
#include <optional>

namespace orvel {

/// The drawing in `svg` without what a picture of a few pixels does not need and a worker thread cannot draw: texts
/// and pictures. Nothing when it is damaged, packed, or so intricate that drawing it would take long.
/// Threads: any.
std::optional<QByteArray> plainSVG(const QByteArray& svg);

}  // namespace orvel
