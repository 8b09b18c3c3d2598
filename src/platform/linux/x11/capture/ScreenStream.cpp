#include "platform/linux/x11/capture/ScreenStream.hpp"

#include "mirror/CaptureService.hpp"
#include "platform/linux/OwnedDescriptor.hpp"
#include "platform/linux/capture/FramePace.hpp"
#include "platform/linux/x11/X11Connection.hpp"
#include "platform/linux/x11/capture/ScreenView.hpp"

#include <poll.h>
#include <sys/eventfd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <ctime>
#include <optional>
#include <semaphore>
#include <system_error>
#include <thread>
#include <utility>

namespace orvel {
namespace {

using SteadyTime = std::chrono::steady_clock::time_point;

/// How soon it looks again after events that changed nothing, such as of another display.
constexpr FramePace::Interval intervalAfterNothing = std::chrono::milliseconds(33);

/// Within which a server answers that does not hang.
constexpr std::chrono::milliseconds streamShutdownTimeout{300};

SteadyTime now() {
  return std::chrono::steady_clock::now();
}

timespec timeUntil(SteadyTime end) {
  using std::chrono::nanoseconds;
  const auto left = std::max(nanoseconds(0), nanoseconds(end - now()));
  const auto seconds = std::chrono::floor<std::chrono::seconds>(left);
  return {.tv_sec = seconds.count(), .tv_nsec = (left - seconds).count()};
}

/// A sleep that ends when a descriptor has something to read, when another thread calls, or in time. Threads: `call`
/// any; the rest one.
class WakeUp {
 public:
  enum class WaitFor {
    input,   ///< The descriptor has something to read, or its other end has gone.
    hangup,  ///< Its other end has gone.
  };

  explicit WakeUp(int descriptor) : descriptor_(descriptor), calls_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

  /// False when the system had no descriptor to give; then it must not be used.
  bool isUsable() const { return calls_.number() >= 0; }

  /// Ends a sleep, or the next one when nobody sleeps. Does not block.
  void call() const { eventfd_write(calls_.number(), 1); }

  /// Sleeps until `end`, or without an end. Returns whether the descriptor woke it.
  bool sleep(WaitFor what, std::optional<SteadyTime> end) const;

 private:
  const int descriptor_;
  const OwnedDescriptor calls_;
};

bool WakeUp::sleep(WaitFor what, std::optional<SteadyTime> end) const {
  const short events = what == WaitFor::input ? POLLIN : 0;
  std::array<pollfd, 2> awaited{pollfd{descriptor_, events, 0}, pollfd{calls_.number(), POLLIN, 0}};
  const timespec limit = end ? timeUntil(*end) : timespec{};
  ppoll(awaited.data(), awaited.size(), end ? &limit : nullptr, nullptr);
  if (awaited[1].revents != 0) calls_.clear();
  return awaited[0].revents != 0;
}

/// What a screen shows, offered once. It is fetched when it is asked for.
class ScreenFrame final : public CapturedFrame {
 public:
  explicit ScreenFrame(ScreenView& view) : view_(view) {}
  ~ScreenFrame() override { view_.releasePicture(); }
  ScreenFrame(const ScreenFrame&) = delete;
  ScreenFrame& operator=(const ScreenFrame&) = delete;

  bool isScreen() const override { return true; }
  bool isValid() const override { return true; }
  std::optional<std::int64_t> status() const override { return 0; }

  const PixelBuffer* pixels() override {
    if (picture_ == nullptr) picture_ = view_.picture();
    return picture_;
  }

 private:
  ScreenView& view_;
  const PixelBuffer* picture_ = nullptr;
};

class ScreenStream final : public CaptureStream {
 public:
  ScreenStream(std::shared_ptr<X11Connection> connection, std::size_t display, const ScreenFormat& format,
               const CaptureConfiguration& configuration, Handlers handlers);
  ~ScreenStream() override;
  ScreenStream(const ScreenStream&) = delete;
  ScreenStream& operator=(const ScreenStream&) = delete;

  /// Begins to offer frames. Called once. False when the system has nothing left to do it with.
  bool begin();

  void resume() override;

 private:
  void run();
  bool isRunning() const { return !stopping_ && connection_->isAlive(); }
  bool hasOffer() const { return isDirty_ && view_.exists(); }
  void update();
  void offer();
  void waitForChanges();
  bool hasChanges();
  void waitForResume();
  void sleepUntil(SteadyTime end);
  void sleep(WakeUp::WaitFor what, std::optional<SteadyTime> end);

  const std::shared_ptr<X11Connection> connection_;
  const Handlers handlers_;
  const WakeUp wakeUp_;
  ScreenView view_;
  FramePace pace_;
  bool isDirty_ = true;  // there is something to be seen that was not taken
  std::atomic<bool> stopping_ = false;
  std::atomic<bool> resumed_ = false;
  std::binary_semaphore threadEnded_{0};
  std::thread thread_;
};

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
  if (!threadEnded_.try_acquire_for(streamShutdownTimeout)) connection_->shutDown();
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
  while (isRunning()) {
    update();
    if (hasOffer()) {
      offer();
      sleepUntil(pace_.due());
      wasWoken = false;
    } else if (wasWoken || !view_.watch().reportsEverything()) {
      sleepUntil(now() + (wasWoken ? std::min(pace_.interval(), intervalAfterNothing) : pace_.interval()));
      wasWoken = false;
    } else {
      waitForChanges();
      wasWoken = true;
    }
  }
  if (!stopping_) handlers_.stopped();
}

void ScreenStream::update() {
  if (view_.update()) isDirty_ = true;
}

void ScreenStream::offer() {
  const SteadyTime begun = now();
  resumed_ = false;
  const FrameAnswer answer = [&] {
    ScreenFrame frame(view_);
    return handlers_.frame(frame);
  }();
  isDirty_ = answer != FrameAnswer::taken;
  if (answer == FrameAnswer::blocked) {
    // Nothing was delivered, so the next one need not keep its distance to this one.
    waitForResume();
  } else {
    pace_.frameAt(begun);
  }
}

void ScreenStream::waitForChanges() {
  if (view_.exists()) view_.watch().followPointer(true);
  // The pointer may have moved before it was followed.
  update();
  while (!hasOffer() && isRunning() && !hasChanges()) sleep(WakeUp::WaitFor::input, std::nullopt);
  view_.watch().followPointer(false);
}

/// To ask and to flush also reads what has come. What was read already wakes nobody, and the server reports only once.
bool ScreenStream::hasChanges() {
  xcb_flush(connection_->get());
  view_.watch().takeEvents();
  return view_.watch().hasChanges();
}

void ScreenStream::waitForResume() {
  // It may take hours, through which the server would keep what is not taken.
  while (!resumed_ && isRunning()) sleep(WakeUp::WaitFor::input, std::nullopt);
}

void ScreenStream::sleepUntil(SteadyTime end) {
  while (now() < end && isRunning()) sleep(WakeUp::WaitFor::hangup, end);
}

void ScreenStream::sleep(WakeUp::WaitFor what, std::optional<SteadyTime> end) {
  xcb_flush(connection_->get());
  // Taking the events is also what finds out that the server has gone.
  if (wakeUp_.sleep(what, end)) view_.watch().takeEvents();
}

}  // namespace

std::variant<std::unique_ptr<CaptureStream>, CaptureFailure> startScreenStream(
    const std::shared_ptr<X11Connection>& connection, std::size_t display, const CaptureConfiguration& configuration,
    CaptureStream::Handlers handlers) {
  const auto format = ScreenFormat::of(*connection);
  if (!format) return CaptureFailure{"The colour depth of this computer's screen is not supported."};
  auto stream = std::make_unique<ScreenStream>(connection, display, *format, configuration, std::move(handlers));
  if (!connection->isAlive()) return CaptureFailure{"The desktop does not answer."};
  if (!stream->begin()) return CaptureFailure{"This computer has no room left to capture its screen."};
  return stream;
}

}  // namespace orvel
