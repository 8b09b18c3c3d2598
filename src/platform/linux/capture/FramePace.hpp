#pragma once

#include <algorithm>
#include <chrono>

namespace orvel {

/// When frames are due: no sooner than the frame interval after the last one, however late that was.
/// Threads: one at a time.
class FramePace {
 public:
  using Time = std::chrono::steady_clock::time_point;
  using Interval = std::chrono::nanoseconds;

  explicit FramePace(int framesPerSecond) : interval_(intervalOf(std::max(framesPerSecond, 1))) {}

  Interval interval() const { return interval_; }

  /// When the next frame may be offered.
  Time due() const { return due_; }

  /// A frame is offered at this moment.
  void frameAt(Time now) { due_ = now + interval_; }

 private:
  /// Rounded up: there are never more frames than that in a second.
  static constexpr Interval intervalOf(int framesPerSecond) {
    return Interval((std::nano::den + framesPerSecond - 1) / framesPerSecond);
  }

  const Interval interval_;
  Time due_;
};

}  // namespace orvel
