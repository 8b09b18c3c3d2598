#pragma once

#include "base/Executor.hpp"
#include "base/Geometry.hpp"
#include "base/Guarded.hpp"
#include "base/SharedBytes.hpp"
#include "mirror/CaptureService.hpp"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace orvel {

class JPEGEncoder;
class ScreenRecordingAccess;

/// The one capture of the screen: turns its frames into JPEG images for whoever is mirroring, keeps them within a byte
/// budget by their quality, and takes no new frame while two are on their way.
///
/// Threads: any, but destroyed by its owner when no queue runs its tasks any more.
class ScreenMirror {
 public:
  struct Dependencies {
    ScreenRecordingAccess& access;
    CaptureService& capture;
    JPEGEncoder& encoder;
    Executor& queue;  ///< Where captures start and end, one after another; they take their time.
  };

  enum class MirrorError { notPermitted, noDisplay };

  /// The size of the frames in pixels, or why there are none, in words for the user.
  using Outcome = std::variant<Size, std::string>;
  using Completion = std::function<void(const Outcome&)>;

  /// Takes a JPEG image on its way, and calls `sent` once it is there, or never.
  using FrameHandler = std::function<void(SharedBytes jpeg, Task sent)>;

  static constexpr std::int64_t frameBudget = 420'000;   ///< Bytes; more lowers the quality.
  static constexpr std::int64_t frameCeiling = 900'000;  ///< Bytes; more is not delivered.
  static constexpr double qualityFloor = 0.2;            ///< The lowest that the quality is adapted to.

  explicit ScreenMirror(const Dependencies& dependencies);
  ~ScreenMirror();
  ScreenMirror(const ScreenMirror&) = delete;
  ScreenMirror& operator=(const ScreenMirror&) = delete;

  /// Starts to capture the main display and returns at once. Frames are at most `maxWidth` pixels wide, never larger
  /// than the display and never smaller than 320 by 240; `fps` counts within 1 to 30, `quality` within 0.2 to 0.85.
  /// Whatever runs ends first. Calls `completion` once, before the first frame is delivered.
  void start(std::int64_t maxWidth, std::int64_t fps, double quality, Completion completion);

  /// Ends the capture, if there is one, and forgets the frames that are on their way. A start that is still under way
  /// goes on. Returns at once.
  void stop();

  /// The same, but returns when no frame is delivered any more. For the owner, when the queue runs nothing any more.
  void finish();

  /// Sets who gets the frames, on the capture's thread; nobody when null.
  void setOnFrame(FrameHandler handler);

 private:
  struct State {
    std::unique_ptr<CaptureStream> stream;
    std::vector<std::unique_ptr<CaptureStream>> stopped;  // they are still to end
    std::int64_t inFlight = 0;                            // frames handed to `onFrame` that are not there yet
    double requestedQuality = 0.45;
    double workingQuality = 0.45;
    bool isRunning = false;
    bool streamBlocked = false;       // until there is room
    std::uint64_t captureNumber = 0;  // whose frames `inFlight` counts
    std::shared_ptr<const FrameHandler> onFrame;

    bool letGo();
    bool forget();
  };

  std::string description(MirrorError error) const;
  void begin(std::int64_t maxWidth, std::int64_t fps, const Completion& completion);
  Outcome startStream(std::int64_t maxWidth, std::int64_t fps);
  void adopt(std::unique_ptr<CaptureStream> stream);
  void letFramesPass();
  FrameAnswer frameCaptured(CapturedFrame& frame);
  bool hasRoom();
  FrameAnswer deliver(SharedBytes jpeg);
  void frameSent(std::uint64_t captureNumber);
  void streamStopped();
  void endStopped();

  const Dependencies dependencies_;
  Guarded<State> state_;
};

}  // namespace orvel
