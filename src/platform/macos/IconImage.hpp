#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orvel {

/// The icon that the desktop shows for the file at `path` as a PNG, drawn into a square of `size` points. Each point is
/// two pixels wide, for the screens of phones are as dense at least. Nothing when it cannot be drawn. Threads: any.
std::optional<std::vector<std::uint8_t>> drawIcon(const std::string& path, double size);

}  // namespace orvel
