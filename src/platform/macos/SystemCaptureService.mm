#include "platform/macos/SystemCaptureService.hpp"

#include "platform/macos/Answer.hpp"
#include "platform/macos/Patience.hpp"
#include "platform/macos/capture/DisplayContent.hpp"
#include "platform/macos/capture/Failure.hpp"

#import <ScreenCaptureKit/ScreenCaptureKit.h>

namespace orvel {
namespace {

struct ContentAnswer {
  SCShareableContent* content;
  NSError* error;
};

}  // namespace

SystemCaptureService::SystemCaptureService() : patience_(std::make_shared<Patience>()) {}

SystemCaptureService::~SystemCaptureService() = default;

std::variant<std::unique_ptr<ShareableContent>, CaptureFailure> SystemCaptureService::shareableContent() {
  @autoreleasepool {
    const auto answer = std::make_shared<Answer<ContentAnswer>>(patience_);
    [SCShareableContent getShareableContentExcludingDesktopWindows:NO
                                               onScreenWindowsOnly:YES
                                                 completionHandler:^(SCShareableContent* content, NSError* error) {
                                                   answer->give({content, error});
                                                 }];
    const auto given = answer->await();
    if (!given) return Failure::silence();
    if (given->content == nil) return Failure::because(given->error);
    return std::make_unique<DisplayContent>(given->content, patience_);
  }
}

void SystemCaptureService::giveUp() {
  patience_->end();
}

}  // namespace orvel
