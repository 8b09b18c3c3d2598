#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace orvel {

/// Draws the icons that the desktop shows for files, one at a time: it may hand out the same image twice, and an image
/// is for one thread at a time. Threads: any.
class IconDrawer {
 public:
  /// The icon of the file at `path` as a PNG, drawn into a square of `size` points. Each point is two pixels wide, for
  /// the screens of phones are as dense at least. Nothing when it cannot be drawn.
  std::optional<std::vector<std::uint8_t>> draw(const std::string& path, double size);

 private:
  std::mutex drawing_;
};

}  // namespace orvel
