#pragma once

#include "platform/linux/capture/PixelRect.hpp"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace orvel {

class X11Connection;

/// How the X server lays out the pixels of its screen, as far as they can be used.
struct ScreenFormat {
  enum class Pixels {
    blueGreenRed,  ///< Four bytes a pixel, in the order of PixelBuffer.
    rgb565,        ///< Two bytes a pixel.
  };

  Pixels pixels = Pixels::blueGreenRed;

  /// Nothing when the screen has another one. Does not ask the server.
  static std::optional<ScreenFormat> of(const X11Connection& connection);

  /// Rows are padded to four bytes.
  std::size_t bytesPerRow(int width) const {
    const std::size_t bytesPerPixel = pixels == Pixels::rgb565 ? 2 : 4;
    return (static_cast<std::size_t>(width) * bytesPerPixel + 3) / 4 * 4;
  }
};

/// A part of the X screen in memory: rows from the top, four bytes a pixel as PixelBuffer has them.
///
/// Threads: one at a time; `fetch` waits for the server.
class ScreenImage {
 public:
  ScreenImage(const X11Connection& connection, const ScreenFormat& format, const PixelRect& area);
  ~ScreenImage();
  ScreenImage(const ScreenImage&) = delete;
  ScreenImage& operator=(const ScreenImage&) = delete;

  const PixelRect& area() const { return area_; }
  std::uint8_t* bytes() { return bytes_; }
  std::size_t bytesPerRow() const { return 4 * static_cast<std::size_t>(area_.width); }

  /// Brings these rows, counted from the top of the area, as they are on the screen now. False when the server refuses:
  /// the area is not, or no longer, a part of the screen.
  bool fetch(const Rows& rows);

  /// Whether the same is to be seen on both, which have the same size.
  bool showsTheSameAs(const ScreenImage& other) const;

 private:
  class SharedMemory;

  bool fetchShared(const Rows& rows);
  bool fetchCopy(const Rows& rows);
  void convert(const Rows& rows);
  std::size_t size() const { return bytesPerRow() * static_cast<std::size_t>(area_.height); }

  const X11Connection& connection_;
  const ScreenFormat format_;
  const PixelRect area_;
  const std::size_t fetchedBytesPerRow_;
  const std::unique_ptr<SharedMemory> shared_;  // null when the server cannot write into our memory
  std::vector<std::uint8_t> plain_;             // what was fetched, when there is no shared memory
  std::vector<std::uint8_t> converted_;         // when the server has another format
  std::uint8_t* fetched_ = nullptr;
  std::uint8_t* bytes_ = nullptr;
};

}  // namespace orvel
