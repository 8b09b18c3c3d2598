#pragma once

#include "mirror/CaptureService.hpp"
#include "mirror/CaptureStream.hpp"
#include "platform/macos/capture/OrvelStreamOutput.hpp"

#import <ScreenCaptureKit/ScreenCaptureKit.h>

#include <memory>
#include <optional>

namespace orvel {

class FrameOffers;
class Patience;

/// Captures a display of the system's. A system that hangs does not hold up its end.
///
/// Threads: any; the handlers run on the queue of the offers. `begin`, which waits for the system, is called first.
class DisplayStream final : public CaptureStream {
 public:
  DisplayStream(SCContentFilter* filter, SCStreamConfiguration* configuration, std::shared_ptr<Patience> patience,
                std::shared_ptr<FrameOffers> offers);
  ~DisplayStream() override;
  DisplayStream(const DisplayStream&) = delete;
  DisplayStream& operator=(const DisplayStream&) = delete;

  /// Begins to offer frames, or tells why it does not. Called once.
  std::optional<CaptureFailure> begin();

  void resume() override;

 private:
  void stop();

  const std::shared_ptr<Patience> patience_;
  const std::shared_ptr<FrameOffers> offers_;
  OrvelStreamOutput* const output_;
  SCStream* const stream_;
  bool mayRun_ = false;
};

}  // namespace orvel
