#include "session/FrameLane.hpp"

#include <algorithm>
#include <utility>

namespace orvel {
namespace {

constexpr Seconds aboutToLeave{0.010};
constexpr std::size_t roomForMessages = 4096;  // that go along with a frame, and for what wraps it
constexpr Seconds shortestPause{0.001};
constexpr Seconds longestPause{0.020};
constexpr Seconds longestPauseWithoutProgress{1};

}  // namespace

FrameLane::FrameLane(Executor& queue, std::function<Backlog()> backlog, Task ready)
    : queue_(queue), backlog_(std::move(backlog)), ready_(std::move(ready)) {}

FrameLane::~FrameLane() = default;

void FrameLane::add(Frame frame) {
  if (hasEnded_) {
    frame.taken();
    return;
  }
  waiting_.push_back(std::move(frame));
  if (waiting_.size() == 1 && !isLeaving_) ready_();
}

FrameLane::Frame FrameLane::takeNext() {
  Frame frame = std::move(waiting_.front());
  waiting_.pop_front();
  newestSize_ = frame.image.size;
  unconfirmed_.push_back(std::exchange(frame.taken, {}));
  isLeaving_ = true;
  return frame;
}

void FrameLane::accepted() {
  hasWaited_ = false;
  pause_ = shortestPause;
  look();
}

void FrameLane::clear() {
  for (const Frame& frame : std::exchange(waiting_, {})) frame.taken();
}

void FrameLane::look() {
  if (!isLeaving_) return;
  const Backlog backlog = backlog_();
  // A peer that has fallen asleep acknowledges nothing, however swift it was.
  if (backlog.time <= aboutToLeave && backlog.bytes <= newestSize_ + roomForMessages) {
    hasLeft();
  } else {
    lookLater(backlog);
  }
}

void FrameLane::lookLater(const Backlog& backlog) {
  if (hasWaited_ && backlog.bytes >= unacknowledged_) {
    pause_ = std::min(pause_ * 2, longestPauseWithoutProgress);
  } else {
    pause_ = std::clamp(backlog.time - aboutToLeave, shortestPause, longestPause);
  }
  hasWaited_ = true;
  unacknowledged_ = backlog.bytes;
  queue_.postAfter(pause_, [this, alive = std::weak_ptr(alive_)] {
    if (!alive.expired()) look();
  });
}

void FrameLane::hasLeft() {
  isLeaving_ = false;
  const std::size_t kept = hasWaited_ ? 1 : 0;
  while (unconfirmed_.size() > kept) {
    const Task taken = std::move(unconfirmed_.front());
    unconfirmed_.pop_front();
    taken();
  }
  if (!waiting_.empty()) ready_();
}

void FrameLane::end() {
  hasEnded_ = true;
  isLeaving_ = false;
  for (const Task& taken : std::exchange(unconfirmed_, {})) taken();
  clear();
}

}  // namespace orvel
