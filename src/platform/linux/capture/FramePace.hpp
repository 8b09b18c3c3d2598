#pragma once

#include <chrono>

namespace orvel {

/// When frames are due: at once after a pause, otherwise on a grid, so that being late once does not make all that
/// follow late. Threads: one at a time.
class FramePace {
 public:
  using Time = std::chrono::steady_clock::time_point;
  using Interval = std::chrono::nanoseconds;

  explicit FramePace(int framesPerSecond);

  Interval interval() const { return interval_; }

  /// When the next frame may be offered.
  Time due() const { return due_; }

  /// A frame is offered at this moment.
  void frameAt(Time now);

  /// Nothing was to be offered when a frame was due: the next one begins a new grid.
  void pause() { due_ = {}; }

 private:
  const Interval interval_;
  Time due_;
};

}  // namespace orvel
