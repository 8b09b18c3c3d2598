#pragma once

#include "mirror/CapturedFrame.hpp"

#import <ScreenCaptureKit/ScreenCaptureKit.h>

namespace orvel {

/// A sample of a stream, which must outlive it. Threads: the one on which it is handed over.
class SampleFrame final : public CapturedFrame {
 public:
  SampleFrame(CMSampleBufferRef sample, SCStreamOutputType type) : sample_(sample), type_(type) {}

  bool isScreen() const override;
  bool isValid() const override;
  std::optional<std::int64_t> status() const override;
  const PixelBuffer* pixels() override;

  /// Whether it shows the screen, and not only that nothing has changed on it.
  bool showsScreen() const;

 private:
  const CMSampleBufferRef sample_;
  const SCStreamOutputType type_;
  PixelBuffer picture_;
};

}  // namespace orvel
