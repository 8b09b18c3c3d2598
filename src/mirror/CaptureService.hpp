#pragma once

#include "base/Geometry.hpp"
#include "mirror/CaptureStream.hpp"

#include <cstddef>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace orvel {

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
