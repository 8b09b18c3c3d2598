#include "bench/FfmpegScreen.hpp"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <array>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace orvel::bench {
namespace {

constexpr int pipeSize = 1 << 20;  // a whole image fits in, so it need not wait for us
constexpr std::string_view imageStart = "\xff\xd8\xff";

/// Colours have half the resolution, as in our own images.
std::vector<std::string> commandFor(const std::string& display, int framesPerSecond, int quality, int target) {
  return {"ffmpeg",
          "-nostdin",
          "-loglevel",
          "error",
          "-f",
          "x11grab",
          "-framerate",
          std::to_string(framesPerSecond),
          "-video_size",
          FullHDDesktop::sizeText(),
          "-i",
          display,
          "-vf",
          "scale=900:-2",
          "-pix_fmt",
          "yuvj420p",
          "-q:v",
          std::to_string(quality),
          "-f",
          "mjpeg",
          "pipe:" + std::to_string(target)};
}

}  // namespace

FfmpegScreen::FfmpegScreen(const FullHDDesktop& desktop, int framesPerSecond, int quality) {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
  images_ = Descriptor(ends[0]);
  const Descriptor target(ends[1]);
  fcntl(target.get(), F_SETPIPE_SZ, pipeSize);
  program_.emplace(
      ChildProcess::Program{.command = commandFor(desktop.display(), framesPerSecond, quality, target.get()),
                            .environment = desktop.environment(),
                            .keptDescriptors = {target.get()}});
}

std::size_t FfmpegScreen::nextFrame() {
  std::size_t end = std::string::npos;
  // An image is known to be whole when the next one begins.
  for (std::size_t from = 1; end == std::string::npos;) {
    end = read_.find(imageStart, from);
    if (end != std::string::npos) break;
    from = read_.size() < imageStart.size() ? 1 : read_.size() - imageStart.size() + 1;
    readMore();
  }
  read_.erase(0, end);
  return end;
}

void FfmpegScreen::readMore() {
  pollfd awaited{images_.get(), POLLIN, 0};
  std::array<char, 65536> part;
  const bool came = poll(&awaited, 1, static_cast<int>(timeout.count())) == 1;
  const ssize_t length = came ? read(images_.get(), part.data(), part.size()) : 0;
  if (length <= 0) throw std::runtime_error("ffmpeg gives no images (is it installed?): " + program_->output());
  read_.append(part.data(), static_cast<std::size_t>(length));
}

}  // namespace orvel::bench
