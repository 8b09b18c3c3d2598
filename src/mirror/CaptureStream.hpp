#pragma once

#include <functional>

namespace orvel {

class CapturedFrame;

/// What the receiver of a stream says to a frame.
enum class FrameAnswer {
  taken,  ///< It is on its way, or nothing is gained by offering it again.
  again,  ///< It was not taken; what is on the screen after the next frame interval shall be offered.
  waits,  ///< There is no room; what is on the screen when `resume` is called shall be offered.
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

  /// Answers one `waits`, which may still be on its way back from the handler. Neither blocks nor calls a handler.
  virtual void resume() = 0;
};

}  // namespace orvel
