#include "platform/macos/capture/DisplayStream.hpp"

#include "platform/macos/Answer.hpp"
#include "platform/macos/capture/Failure.hpp"
#include "platform/macos/capture/FrameOffers.hpp"

#include <chrono>
#include <utility>

namespace orvel {
namespace {

/// Within which a system ends a capture that does not hang.
constexpr std::chrono::milliseconds farewellPatience{300};

struct CaptureAnswer {
  NSError* error;
};

}  // namespace

DisplayStream::DisplayStream(SCContentFilter* filter, SCStreamConfiguration* configuration,
                             std::shared_ptr<Patience> patience, std::shared_ptr<FrameOffers> offers)
    : patience_(std::move(patience)),
      offers_(std::move(offers)),
      output_([[OrvelStreamOutput alloc] initWithOffers:offers_]),
      stream_([[SCStream alloc] initWithFilter:filter configuration:configuration delegate:output_]) {}

DisplayStream::~DisplayStream() {
  @autoreleasepool {
    if (offers_->end() && mayRun_) stop();
  }
}

std::optional<CaptureFailure> DisplayStream::begin() {
  NSError* error = nil;
  if (![stream_ addStreamOutput:output_
                           type:SCStreamOutputTypeScreen
             sampleHandlerQueue:offers_->queue()
                          error:&error]) {
    return Failure::because(error);
  }
  const auto answer = std::make_shared<Answer<CaptureAnswer>>(patience_);
  mayRun_ = true;
  [stream_ startCaptureWithCompletionHandler:^(NSError* startError) {
    answer->give({startError});
  }];
  const auto given = answer->await();
  if (!given) return Failure::silence();
  if (given->error == nil) return std::nullopt;
  mayRun_ = false;
  return Failure::because(given->error);
}

void DisplayStream::resume() {
  offers_->resume();
}

void DisplayStream::stop() {
  const auto answer = std::make_shared<Answer<CaptureAnswer>>(patience_);
  // Until the capture has ended, however late, it may use both.
  SCStream* stream = stream_;
  OrvelStreamOutput* output = output_;
  [stream_ stopCaptureWithCompletionHandler:^(NSError* error) {
    static_cast<void>(stream);
    static_cast<void>(output);
    answer->give({error});
  }];
  answer->await(farewellPatience);
}

}  // namespace orvel
