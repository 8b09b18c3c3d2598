#include "platform/macos/SystemCaptureService.hpp"

#include "platform/macos/Answer.hpp"
#include "platform/macos/FrameOffers.hpp"
#include "platform/macos/NativeText.hpp"

#include <CoreGraphics/CoreGraphics.h>
#import <ScreenCaptureKit/ScreenCaptureKit.h>

#include <chrono>
#include <optional>
#include <utility>
#include <vector>

/// The output and the delegate of a stream. It has no reference to the stream, so that neither keeps the other alive.
/// Threads: any.
@interface OrvelStreamOutput : NSObject <SCStreamOutput, SCStreamDelegate>
- (instancetype)initWithOffers:(std::shared_ptr<orvel::FrameOffers>)offers;
@end

@implementation OrvelStreamOutput {
  std::shared_ptr<orvel::FrameOffers> offers_;
}

- (instancetype)initWithOffers:(std::shared_ptr<orvel::FrameOffers>)offers {
  self = [super init];
  if (self != nil) offers_ = std::move(offers);
  return self;
}

- (void)stream:(SCStream*)stream didOutputSampleBuffer:(CMSampleBufferRef)sample ofType:(SCStreamOutputType)type {
  @autoreleasepool {
    offers_->sampleCame(sample, type);
  }
}

- (void)stream:(SCStream*)stream didStopWithError:(NSError*)error {
  offers_->stop();
}

@end

namespace orvel {
namespace {

/// Why the system captures nothing, in its own words. `error` is nil when it gives no reason.
CaptureFailure failureOf(NSError* error) {
  if (error == nil) return {"The system cannot capture the screen."};
  return {NativeText::fromCF((__bridge CFStringRef)error.localizedDescription)};
}

/// The wait for the system was cancelled.
CaptureFailure noAnswer() {
  return {"The system does not answer."};
}

/// How long the system may take to end a capture.
constexpr std::chrono::milliseconds stopTimeout{300};

struct CaptureAnswer {
  NSError* error;
};

/// Captures a display of the system's. A system that hangs does not hold up its end.
///
/// Threads: any; the handlers run on the queue of the offers. `begin`, which waits for the system, is called first.
class DisplayStream final : public CaptureStream {
 public:
  DisplayStream(SCContentFilter* filter, SCStreamConfiguration* configuration,
                std::shared_ptr<Cancellation> cancellation, std::shared_ptr<FrameOffers> offers);
  ~DisplayStream() override;
  DisplayStream(const DisplayStream&) = delete;
  DisplayStream& operator=(const DisplayStream&) = delete;

  /// Begins to offer frames, or returns why it does not. Called once.
  std::optional<CaptureFailure> begin();

  void resume() override;

 private:
  void stop();

  const std::shared_ptr<Cancellation> cancellation_;
  const std::shared_ptr<FrameOffers> offers_;
  OrvelStreamOutput* const output_;
  SCStream* const stream_;
  bool mayRun_ = false;
};

DisplayStream::DisplayStream(SCContentFilter* filter, SCStreamConfiguration* configuration,
                             std::shared_ptr<Cancellation> cancellation, std::shared_ptr<FrameOffers> offers)
    : cancellation_(std::move(cancellation)),
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
    return failureOf(error);
  }
  const auto answer = std::make_shared<Answer<CaptureAnswer>>(cancellation_);
  mayRun_ = true;
  [stream_ startCaptureWithCompletionHandler:^(NSError* startError) {
    answer->give({startError});
  }];
  const auto given = answer->await();
  if (!given) return noAnswer();
  if (given->error == nil) return std::nullopt;
  mayRun_ = false;
  return failureOf(given->error);
}

void DisplayStream::resume() {
  offers_->resume();
}

void DisplayStream::stop() {
  const auto answer = std::make_shared<Answer<CaptureAnswer>>(cancellation_);
  // Until the capture has ended, however late, it may use both.
  SCStream* stream = stream_;
  OrvelStreamOutput* output = output_;
  [stream_ stopCaptureWithCompletionHandler:^(NSError* error) {
    static_cast<void>(stream);
    static_cast<void>(output);
    answer->give({error});
  }];
  answer->await(stopTimeout);
}

/// Of the samples that the system may lend out at once: one that is kept, one that is looked at, and one to draw.
constexpr NSInteger queueDepth = 3;

SCStreamConfiguration* streamConfiguration(const CaptureConfiguration& wanted) {
  SCStreamConfiguration* configuration = [[SCStreamConfiguration alloc] init];
  configuration.width = static_cast<size_t>(wanted.width);
  configuration.height = static_cast<size_t>(wanted.height);
  configuration.minimumFrameInterval = CMTimeMake(1, wanted.framesPerSecond);
  configuration.pixelFormat = kCVPixelFormatType_32BGRA;
  configuration.showsCursor = YES;
  configuration.queueDepth = queueDepth;
  // A place in the frame is the same place on the display, whatever the shapes of both.
  if (@available(macOS 14.0, *)) configuration.preservesAspectRatio = NO;
  return configuration;
}

/// The system promises no order, and the first display is the one that is captured.
NSArray<SCDisplay*>* mainDisplayFirst(NSArray<SCDisplay*>* displays) {
  const CGDirectDisplayID main = CGMainDisplayID();
  NSMutableArray<SCDisplay*>* ordered = [NSMutableArray arrayWithCapacity:displays.count];
  for (SCDisplay* each in displays) {
    if (each.displayID == main) [ordered addObject:each];
  }
  for (SCDisplay* each in displays) {
    if (each.displayID != main) [ordered addObject:each];
  }
  return ordered;
}

/// The displays that the system has at one moment, the main one first. Threads: one at a time.
class DisplayContent final : public ShareableContent {
 public:
  DisplayContent(SCShareableContent* content, std::shared_ptr<Cancellation> cancellation);

  std::vector<Size> displays() const override;
  std::variant<std::unique_ptr<CaptureStream>, CaptureFailure> start(std::size_t display,
                                                                     const CaptureConfiguration& configuration,
                                                                     CaptureStream::Handlers handlers) override;

 private:
  NSArray<SCDisplay*>* const displays_;
  const std::shared_ptr<Cancellation> cancellation_;
};

DisplayContent::DisplayContent(SCShareableContent* content, std::shared_ptr<Cancellation> cancellation)
    : displays_(mainDisplayFirst(content.displays)), cancellation_(std::move(cancellation)) {}

std::vector<Size> DisplayContent::displays() const {
  @autoreleasepool {
    std::vector<Size> sizes;
    for (SCDisplay* each in displays_) {
      sizes.push_back({static_cast<double>(each.width), static_cast<double>(each.height)});
    }
    return sizes;
  }
}

std::variant<std::unique_ptr<CaptureStream>, CaptureFailure> DisplayContent::start(
    std::size_t display, const CaptureConfiguration& configuration, CaptureStream::Handlers handlers) {
  @autoreleasepool {
    SCContentFilter* filter = [[SCContentFilter alloc] initWithDisplay:displays_[display] excludingWindows:@[]];
    auto stream = std::make_unique<DisplayStream>(
        filter, streamConfiguration(configuration), cancellation_,
        std::make_shared<FrameOffers>(configuration.framesPerSecond, std::move(handlers)));
    if (auto failure = stream->begin()) return *std::move(failure);
    return stream;
  }
}

struct ContentAnswer {
  SCShareableContent* content;
  NSError* error;
};

}  // namespace

SystemCaptureService::SystemCaptureService() : cancellation_(std::make_shared<Cancellation>()) {}

SystemCaptureService::~SystemCaptureService() = default;

std::variant<std::unique_ptr<ShareableContent>, CaptureFailure> SystemCaptureService::shareableContent() {
  @autoreleasepool {
    const auto answer = std::make_shared<Answer<ContentAnswer>>(cancellation_);
    [SCShareableContent getShareableContentExcludingDesktopWindows:NO
                                               onScreenWindowsOnly:YES
                                                 completionHandler:^(SCShareableContent* content, NSError* error) {
                                                   answer->give({content, error});
                                                 }];
    const auto given = answer->await();
    if (!given) return noAnswer();
    if (given->content == nil) return failureOf(given->error);
    return std::make_unique<DisplayContent>(given->content, cancellation_);
  }
}

void SystemCaptureService::giveUp() {
  cancellation_->cancel();
}

}  // namespace orvel
