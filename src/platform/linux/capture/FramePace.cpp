#include "platform/linux/capture/FramePace.hpp"

#include <algorithm>

namespace orvel {
namespace {

/// Rounded up: there are never more frames than that in a second.
FramePace::Interval intervalOf(int framesPerSecond) {
  const int frames = std::max(framesPerSecond, 1);
  return FramePace::Interval((std::nano::den + frames - 1) / frames);
}

}  // namespace

FramePace::FramePace(int framesPerSecond) : interval_(intervalOf(framesPerSecond)) {}

}  // namespace orvel
