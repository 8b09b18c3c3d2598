#pragma once

#include "mirror/CaptureService.hpp"

#import <ScreenCaptureKit/ScreenCaptureKit.h>

#include <memory>
#include <vector>

namespace orvel {

class Patience;

/// The displays that the system has at one moment, the main one first. Threads: one at a time.
class DisplayContent final : public ShareableContent {
 public:
  DisplayContent(SCShareableContent* content, std::shared_ptr<Patience> patience);

  std::vector<Size> displays() const override;
  std::variant<std::unique_ptr<CaptureStream>, CaptureFailure> start(std::size_t display,
                                                                     const CaptureConfiguration& configuration,
                                                                     CaptureStream::Handlers handlers) override;

 private:
  NSArray<SCDisplay*>* const displays_;
  const std::shared_ptr<Patience> patience_;
};

}  // namespace orvel
