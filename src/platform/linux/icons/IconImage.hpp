#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orvel {

/// Draws the picture in a PNG, SVG or XPM file into the middle of a transparent square of `pixels`, as large as it
/// fits, and returns that as a PNG. Nothing when the file is no such picture, or would take much time or memory.
/// Threads: any.
std::optional<std::vector<std::uint8_t>> drawIcon(const std::string& path, int pixels);

}  // namespace orvel
