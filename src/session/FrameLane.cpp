#include "session/FrameLane.hpp"

#include <algorithm>
#include <utility>

namespace orvel {
namespace {

constexpr Seconds aboutToLeave{0.010};
constexpr Seconds shortestPause{0.001};
constexpr Seconds longestPause{0.020};
constexpr Seconds longestPauseWithoutProgress{1};

}  // namespace

FrameLane::FrameLane(Executor& queue, std::function<Seconds()> backlog, Task ready)
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

const FrameLane::Frame* FrameLane::next() const {
  return isLeaving_ || waiting_.empty() ? nullptr : &waiting_.front();
}

void FrameLane::accepted() {
  if (waiting_.empty()) return;
  untold_.push_back(std::move(waiting_.front().taken));
  waiting_.pop_front();
  isLeaving_ = true;
  hasWaited_ = false;
  pause_ = shortestPause;
  look();
}

void FrameLane::look() {
  if (!isLeaving_) return;
  const Seconds backlog = backlog_();
  if (backlog <= aboutToLeave) {
    hasLeft();
  } else {
    lookLater(backlog);
  }
}

void FrameLane::lookLater(Seconds backlog) {
  if (hasWaited_ && backlog >= lastBacklog_) {
    pause_ = std::min(pause_ * 2, longestPauseWithoutProgress);
  } else {
    pause_ = std::clamp(backlog - aboutToLeave, shortestPause, longestPause);
  }
  hasWaited_ = true;
  lastBacklog_ = backlog;
  queue_.postAfter(pause_, [this, alive = std::weak_ptr(alive_)] {
    if (!alive.expired()) look();
  });
}

void FrameLane::hasLeft() {
  isLeaving_ = false;
  const std::size_t kept = hasWaited_ ? 1 : 0;
  while (untold_.size() > kept) {
    const Task taken = std::move(untold_.front());
    untold_.pop_front();
    taken();
  }
  if (!waiting_.empty()) ready_();
}

void FrameLane::end() {
  hasEnded_ = true;
  isLeaving_ = false;
  for (Frame& frame : std::exchange(waiting_, {})) untold_.push_back(std::move(frame.taken));
  for (const Task& taken : std::exchange(untold_, {})) taken();
}

}  // namespace orvel
