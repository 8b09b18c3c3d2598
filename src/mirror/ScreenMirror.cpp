#include "mirror/ScreenMirror.hpp"

#include "mirror/CaptureService.hpp"
#include "mirror/JPEGEncoder.hpp"
#include "mirror/ScreenRecordingAccess.hpp"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace orvel {
namespace {

constexpr std::int64_t mostInFlight = 2;
constexpr double bestQuality = 0.85;
constexpr double qualityFall = 0.06;  // faster than it rises again
constexpr double qualityRise = 0.02;
constexpr double leastWidth = 320;
constexpr double leastHeight = 240;
constexpr std::int64_t mostFrames = 30;  // a second
constexpr std::int64_t completeStatus = 0;

CaptureConfiguration configurationFor(const Size& display, std::int64_t maxWidth, std::int64_t fps) {
  const double scale = std::min(static_cast<double>(maxWidth) / display.width, 1.0);
  return {.width = static_cast<int>(std::max(std::round(display.width * scale), leastWidth)),
          .height = static_cast<int>(std::max(std::round(display.height * scale), leastHeight)),
          .framesPerSecond = static_cast<int>(std::clamp<std::int64_t>(fps, 1, mostFrames))};
}

bool isComplete(const CapturedFrame& frame) {
  return frame.status().value_or(completeStatus) == completeStatus;
}

double adapted(double quality, double requested, std::int64_t size) {
  if (size > ScreenMirror::frameBudget) return std::max(quality - qualityFall, ScreenMirror::qualityFloor);
  if (size < ScreenMirror::frameBudget / 2) return std::min(quality + qualityRise, requested);
  return quality;
}

}  // namespace

/// The reason in "mirrorDenied". The permission is the system's, and so are the words for it.
std::string ScreenMirror::description(MirrorError error) const {
  switch (error) {
    case MirrorError::notPermitted:
      return dependencies_.access.denial().onStart;
    case MirrorError::noDisplay:
      return "No display available to capture.";
  }
  return {};
}

ScreenMirror::ScreenMirror(const Dependencies& dependencies) : dependencies_(dependencies) {}

ScreenMirror::~ScreenMirror() {
  // Before the state goes that its frames look at.
  finish();
}

void ScreenMirror::setOnFrame(FrameHandler handler) {
  auto next = handler ? std::make_shared<const FrameHandler>(std::move(handler)) : nullptr;
  // What the old one holds goes outside of the lock.
  state_.withLock([&](State& state) { state.onFrame.swap(next); });
}

void ScreenMirror::start(std::int64_t maxWidth, std::int64_t fps, double quality, Completion completion) {
  state_.withLock([&](State& state) {
    state.requestedQuality = std::clamp(quality, qualityFloor, bestQuality);
    state.workingQuality = state.requestedQuality;
  });
  if (!dependencies_.access.isGranted()) {
    completion(description(MirrorError::notPermitted));
    return;
  }
  dependencies_.queue.post(
      [this, maxWidth, fps, completion = std::move(completion)] { begin(maxWidth, fps, completion); });
}

void ScreenMirror::begin(std::int64_t maxWidth, std::int64_t fps, const Completion& completion) {
  // Also what was started since the last stop, or was stopped and is to end only behind this.
  finish();
  completion(startStream(maxWidth, fps));
  letFramesPass();
}

ScreenMirror::Outcome ScreenMirror::startStream(std::int64_t maxWidth, std::int64_t fps) {
  auto asked = dependencies_.capture.shareableContent();
  if (const auto* failure = std::get_if<CaptureFailure>(&asked)) return failure->description;
  ShareableContent& content = *std::get<std::unique_ptr<ShareableContent>>(asked);
  const std::vector<Size> displays = content.displays();
  if (displays.empty()) return description(MirrorError::noDisplay);
  const CaptureConfiguration configuration = configurationFor(displays.front(), maxWidth, fps);
  auto started = content.start(
      0, configuration,
      {.frame = [this](CapturedFrame& frame) { return frameCaptured(frame); }, .stopped = [this] { streamStopped(); }});
  if (const auto* failure = std::get_if<CaptureFailure>(&started)) return failure->description;
  adopt(std::get<std::unique_ptr<CaptureStream>>(std::move(started)));
  return Size{static_cast<double>(configuration.width), static_cast<double>(configuration.height)};
}

void ScreenMirror::adopt(std::unique_ptr<CaptureStream> stream) {
  state_.withLock([&](State& state) {
    state.stream = std::move(stream);
    state.inFlight = 0;
    ++state.captureNumber;
  });
}

/// From now on frames are delivered: whoever asked for them knows their size.
void ScreenMirror::letFramesPass() {
  state_.withLock([](State& state) {
    state.isRunning = state.stream != nullptr;
    if (state.isRunning && std::exchange(state.streamBlocked, false)) state.stream->resume();
  });
}

FrameAnswer ScreenMirror::frameCaptured(CapturedFrame& frame) {
  if (!frame.isScreen() || !frame.isValid() || !isComplete(frame)) return FrameAnswer::taken;
  if (!hasRoom()) return FrameAnswer::blocked;
  const PixelBuffer* pixels = frame.pixels();
  if (pixels == nullptr) return FrameAnswer::taken;
  const double quality = state_.withLock([](const State& state) { return state.workingQuality; });
  auto jpeg = dependencies_.encoder.encode(*pixels, quality);
  return jpeg ? deliver(*std::move(jpeg)) : FrameAnswer::taken;
}

bool ScreenMirror::hasRoom() {
  return state_.withLock([](State& state) {
    const bool room = state.isRunning && state.inFlight < mostInFlight;
    state.streamBlocked = !room;
    return room;
  });
}

FrameAnswer ScreenMirror::deliver(SharedBytes jpeg) {
  FrameAnswer answer = FrameAnswer::taken;
  std::uint64_t captureNumber = 0;
  const auto handler = state_.withLock([&](State& state) -> std::shared_ptr<const FrameHandler> {
    if (!state.isRunning) return nullptr;
    const auto size = static_cast<std::int64_t>(jpeg.size);
    const double quality =
        std::exchange(state.workingQuality, adapted(state.workingQuality, state.requestedQuality, size));
    if (size > frameCeiling) {
      // At the floor the next one would be as large.
      if (quality > qualityFloor) answer = FrameAnswer::again;
      return nullptr;
    }
    ++state.inFlight;
    captureNumber = state.captureNumber;
    return state.onFrame;
  });
  if (handler) (*handler)(std::move(jpeg), [this, captureNumber] { frameSent(captureNumber); });
  return answer;
}

void ScreenMirror::frameSent(std::uint64_t captureNumber) {
  state_.withLock([&](State& state) {
    // The frames of a capture that has ended are forgotten.
    if (captureNumber != state.captureNumber) return;
    state.inFlight = std::max<std::int64_t>(state.inFlight - 1, 0);
    if (state.stream && std::exchange(state.streamBlocked, false)) state.stream->resume();
  });
}

/// Hands the stream over to be ended. Returns whether there was one.
bool ScreenMirror::State::letGo() {
  isRunning = false;
  streamBlocked = false;
  if (!stream) return false;
  stopped.push_back(std::move(stream));
  return true;
}

/// The same, and forgets its frames.
bool ScreenMirror::State::forget() {
  inFlight = 0;
  ++captureNumber;
  return letGo();
}

void ScreenMirror::stop() {
  // Not here, for to end takes a while.
  if (state_.withLock([](State& state) { return state.forget(); })) dependencies_.queue.post([this] { endStopped(); });
}

void ScreenMirror::finish() {
  state_.withLock([](State& state) { state.forget(); });
  endStopped();
}

void ScreenMirror::streamStopped() {
  // Not here, for a stream cannot end itself.
  if (state_.withLock([](State& state) { return state.letGo(); })) dependencies_.queue.post([this] { endStopped(); });
}

void ScreenMirror::endStopped() {
  auto stopped = state_.withLock([](State& state) { return std::exchange(state.stopped, {}); });
  stopped.clear();
}

}  // namespace orvel
