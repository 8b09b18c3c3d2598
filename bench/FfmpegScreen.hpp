#pragma once

#include "bench/FullHDDesktop.hpp"
#include "desktop/ChildProcess.hpp"
#include "desktop/Descriptor.hpp"

#include <cstddef>
#include <optional>
#include <string>

namespace orvel::bench {

/// ffmpeg, which captures the screen, scales it to a width of 900 and writes JPEG images into a pipe, until this object
/// goes. What goes wrong is thrown.
///
/// Threads: one at a time; the thread that made it must live as long as the program.
class FfmpegScreen {
 public:
  /// The scale of its quality, from the best to the worst.
  static constexpr int bestQuality = 2;
  static constexpr int worstQuality = 31;

  FfmpegScreen(const FullHDDesktop& desktop, int framesPerSecond, int quality);

  /// Waits for the next image and returns its size in bytes.
  std::size_t nextFrame();

  pid_t pid() const { return program_->pid(); }

 private:
  void readMore();

  Descriptor images_;
  std::optional<ChildProcess> program_;
  std::string read_;  // not yet reported
};

}  // namespace orvel::bench
