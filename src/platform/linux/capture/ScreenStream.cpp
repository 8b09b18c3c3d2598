#include "platform/linux/capture/ScreenStream.hpp"

#include "platform/linux/capture/ScreenFrame.hpp"
#include "platform/linux/x11/X11Connection.hpp"

#include <algorithm>
#include <chrono>
#include <optional>
#include <system_error>
#include <utility>

namespace orvel {
namespace {

/// How soon it looks again after news that were none, such as of another display.
constexpr FramePace::Interval pauseAfterNothing = std::chrono::milliseconds(33);

/// Within which a server answers that does not hang.
constexpr std::chrono::milliseconds shutdownTimeout{300};

FramePace::Time now() {
  return std::chrono::steady_clock::now();
}

}  // namespace

ScreenStream::ScreenStream(std::shared_ptr<X11Connection> connection, std::size_t display, const ScreenFormat& format,
                           const CaptureConfiguration& configuration, Handlers handlers)
    : connection_(std::move(connection)),
      handlers_(std::move(handlers)),
      wakeUp_(xcb_get_file_descriptor(connection_->get())),
      view_(*connection_, display, format, configuration.width, configuration.height),
      pace_(configuration.framesPerSecond) {}

ScreenStream::~ScreenStream() {
  stopping_ = true;
  wakeUp_.call();
  if (!thread_.joinable()) return;
  // What is broken off may leave a descriptor behind that was just to be sent.
  if (!threadEnded_.try_acquire_for(shutdownTimeout)) connection_->breakOff();
  thread_.join();
}

bool ScreenStream::begin() {
  if (!wakeUp_.isUsable()) return false;
  try {
    thread_ = std::thread([this] {
      run();
      threadEnded_.release();
    });
  } catch (const std::system_error&) {
    return false;
  }
  return true;
}

void ScreenStream::resume() {
  resumed_ = true;
  wakeUp_.call();
}

void ScreenStream::run() {
  bool wasWoken = false;
  while (isGoingOn()) {
    look();
    if (hasOffer()) {
      offer();
      restUntil(pace_.due());
      wasWoken = false;
    } else if (wasWoken || !view_.watch().tellsAll()) {
      restUntil(now() + (wasWoken ? std::min(pace_.interval(), pauseAfterNothing) : pace_.interval()));
      wasWoken = false;
    } else {
      awaitNews();
      wasWoken = true;
    }
  }
  if (!stopping_) handlers_.stopped();
}

bool ScreenStream::isGoingOn() const {
  return !stopping_ && connection_->isAlive();
}

void ScreenStream::look() {
  if (view_.look()) isDirty_ = true;
}

void ScreenStream::offer() {
  const FramePace::Time begun = now();
  resumed_ = false;
  const FrameAnswer answer = [&] {
    ScreenFrame frame(view_);
    return handlers_.frame(frame);
  }();
  isDirty_ = answer != FrameAnswer::taken;
  if (answer == FrameAnswer::waits) {
    // Nothing was delivered, so the next one need not keep its distance to this one.
    awaitResume();
  } else {
    pace_.frameAt(begun);
  }
}

void ScreenStream::awaitNews() {
  if (view_.exists()) view_.watch().followPointer(true);
  // The pointer may have moved before it was followed.
  look();
  while (!hasOffer() && isGoingOn() && !hasNews()) sleep(WakeUp::Minds::everything, std::nullopt);
  view_.watch().followPointer(false);
}

/// To ask and to flush also reads what has come. What was read already wakes nobody, and the server tells only once.
bool ScreenStream::hasNews() {
  xcb_flush(connection_->get());
  view_.watch().takeEvents();
  return view_.watch().hasNews();
}

void ScreenStream::awaitResume() {
  // It may take hours, through which the server would keep what is not taken.
  while (!resumed_ && isGoingOn()) sleep(WakeUp::Minds::everything, std::nullopt);
}

void ScreenStream::restUntil(FramePace::Time end) {
  while (now() < end && isGoingOn()) sleep(WakeUp::Minds::end, end);
}

void ScreenStream::sleep(WakeUp::Minds minds, std::optional<FramePace::Time> end) {
  xcb_flush(connection_->get());
  // Taking the events is also what finds out that the server has gone.
  if (wakeUp_.sleep(minds, end)) view_.watch().takeEvents();
}

}  // namespace orvel
