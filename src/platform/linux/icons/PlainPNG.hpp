#pragma once

#include <QByteArray>
#include <optional>

namespace orvel {

/// The picture in `png` without all that is not needed to draw it, such as packed texts, which may unpack to anything.
/// Nothing when it is no PNG, or damaged. Threads: any.
std::optional<QByteArray> plainPNG(const QByteArray& png);

}  // namespace orvel
