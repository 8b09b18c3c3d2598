#include "desktop/FrameReceiver.hpp"

#include "mirror/CaptureService.hpp"

#include <unistd.h>

#include <fstream>
#include <string>

namespace orvel {

CaptureStream::Handlers FrameReceiver::handlers() {
  return {.frame = [this](CapturedFrame& frame) { return receive(frame); },
          .stopped =
              [this] {
                const std::lock_guard lock(mutex_);
                hasEnded_ = true;
                changed_.notify_all();
              }};
}

FrameAnswer FrameReceiver::receive(CapturedFrame& frame) {
  const std::lock_guard lock(mutex_);
  times_.push_back(std::chrono::steady_clock::now());
  thread_ = gettid();
  if (answer_ == FrameAnswer::taken) {
    const PixelBuffer* pixels = frame.pixels();
    if (pixels != nullptr) picture_ = Picture(*pixels);
  }
  changed_.notify_all();
  return answer_;
}

void FrameReceiver::answerWith(FrameAnswer answer) {
  const std::lock_guard lock(mutex_);
  answer_ = answer;
}

std::size_t FrameReceiver::count() const {
  return times().size();
}

std::vector<FrameReceiver::Time> FrameReceiver::times() const {
  const std::lock_guard lock(mutex_);
  return times_;
}

bool FrameReceiver::waitForCount(std::size_t count, Milliseconds limit) {
  std::unique_lock lock(mutex_);
  return changed_.wait_for(lock, limit, [&] { return times_.size() >= count; });
}

bool FrameReceiver::waitForPicture(const std::function<bool(const Picture&)>& pleases, Milliseconds limit) {
  std::unique_lock lock(mutex_);
  return changed_.wait_for(lock, limit, [&] { return picture_.width > 0 && pleases(picture_); });
}

std::size_t FrameReceiver::settle(Milliseconds silence) {
  std::size_t before = count();
  while (waitForCount(before + 1, silence)) before = count();
  return before;
}

Picture FrameReceiver::picture() const {
  const std::lock_guard lock(mutex_);
  return picture_;
}

bool FrameReceiver::waitForEnd(Milliseconds limit) {
  std::unique_lock lock(mutex_);
  return changed_.wait_for(lock, limit, [&] { return hasEnded_; });
}

long FrameReceiver::sleeps() const {
  const std::lock_guard lock(mutex_);
  std::ifstream status("/proc/self/task/" + std::to_string(thread_) + "/status");
  const std::string wanted = "voluntary_ctxt_switches:";
  std::string word;
  long count = -1;
  while (status >> word) {
    if (word == wanted) status >> count;
  }
  return count;
}

}  // namespace orvel
