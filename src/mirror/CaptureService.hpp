#pragma once

#include "base/Geometry.hpp"
#include "mirror/JPEGEncoder.hpp"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace orvel {

/// One frame as the capture service hands it over. It lives until its handler returns.
///
/// Threads: the one on which it is handed over.
class CapturedFrame {
 public:
  virtual ~CapturedFrame() = default;

  /// Whether it is of the screen, and not of anything else that the service may deliver.
  virtual bool isScreen() const = 0;

  /// Whether the service says that there is something in it to be looked at.
  virtual bool isValid() const = 0;

  /// What the service says of its content: 0 is complete, others are idle, blank and the like. Nothing when the service
  /// says nothing about it that is a whole number.
  virtual std::optional<std::int64_t> status() const = 0;

  /// Its pixels, as they are on the screen now. They are fetched only here, for that costs. Null when they cannot be.
  virtual const PixelBuffer* pixels() = 0;
};

/// What the receiver of a stream says to a frame.
enum class FrameAnswer {
  taken,    ///< It is on its way, or nothing is gained by offering it again.
  again,    ///< It was not taken; what is on the screen after the next frame interval shall be offered.
  blocked,  ///< There is no room; what is on the screen when `resume` is called shall be offered.
};

/// A running capture. It offers a frame at once, then one after each change, but no more in a second than was agreed
/// on. To destroy it ends it: no handler runs after that. It is not destroyed by one of its handlers.
///
/// Threads: any. The handlers run on a thread of the stream, one at a time.
class CaptureStream {
 public:
  struct Handlers {
    std::function<FrameAnswer(CapturedFrame&)> frame;
    /// The stream has ended by itself. Called at most once, and last.
    std::function<void()> stopped;
  };

  virtual ~CaptureStream() = default;

  /// Ends one `blocked`, which may still be on its way back from the handler. Neither blocks nor calls a handler.
  virtual void resume() = 0;
};

/// Why something cannot be captured, in words for the user.
struct CaptureFailure {
  std::string description;
};

/// What a stream shall deliver: frames of exactly this size in pixels, the cursor drawn in, at most so many a second.
struct CaptureConfiguration {
  int width = 0;
  int height = 0;
  int framesPerSecond = 1;
};

/// What can be captured at one moment. Threads: one at a time.
class ShareableContent {
 public:
  virtual ~ShareableContent() = default;

  /// The sizes of the displays in points. The first is the main one.
  virtual std::vector<Size> displays() const = 0;

  /// Captures the whole of the display that stands at this place in the list. Called once. Waits until the capture
  /// runs; its first frame may come before that.
  virtual std::variant<std::unique_ptr<CaptureStream>, CaptureFailure> start(std::size_t display,
                                                                             const CaptureConfiguration& configuration,
                                                                             CaptureStream::Handlers handlers) = 0;
};

/// The desktop's service that captures the screen. Threads: any.
class CaptureService {
 public:
  virtual ~CaptureService() = default;

  /// Asks what can be captured now, and waits for the answer.
  virtual std::variant<std::unique_ptr<ShareableContent>, CaptureFailure> shareableContent() = 0;
};

}  // namespace orvel
