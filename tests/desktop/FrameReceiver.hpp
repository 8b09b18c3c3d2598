#pragma once

#include "desktop/Picture.hpp"
#include "desktop/Timeout.hpp"
#include "mirror/CaptureService.hpp"

#include <sys/types.h>

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <vector>

namespace orvel {

/// Whoever watches a screen: keeps the newest frame, and knows when each came. It lives longer than its stream.
///
/// Threads: any.
class FrameReceiver {
 public:
  using Time = std::chrono::steady_clock::time_point;

  CaptureStream::Handlers handlers();

  /// What it says to the frames from now on. It looks at the pixels only of those that it takes.
  void answerWith(FrameAnswer answer);

  /// How many frames were offered until now.
  std::size_t count() const;
  std::vector<Time> times() const;

  /// Waits until so many were offered in all.
  bool waitForCount(std::size_t count, Milliseconds limit = timeout);

  /// Waits until the newest picture pleases. False when none does in time.
  bool waitForPicture(const std::function<bool(const Picture&)>& pleases, Milliseconds limit = timeout);

  /// Waits until no frame has come for a while, and returns how many there were in all.
  std::size_t settle(Milliseconds silence = 3 * lull);

  /// The newest that was taken.
  Picture picture() const;

  /// Waits until the stream has ended by itself; false when it does not.
  bool waitForEnd(Milliseconds limit = timeout);

  /// How often the stream's thread has gone to sleep until now.
  long sleeps() const;

 private:
  FrameAnswer receive(CapturedFrame& frame);

  mutable std::mutex mutex_;
  mutable std::condition_variable changed_;
  FrameAnswer answer_ = FrameAnswer::taken;
  std::vector<Time> times_;
  Picture picture_;
  bool hasEnded_ = false;
  pid_t thread_ = 0;
};

}  // namespace orvel
