#include "frameworks/ScreenCapture.hpp"

#include "frameworks/Samples.hpp"
#include "runtime/Dispatch.hpp"
#include "runtime/Foundation.hpp"

#import <ScreenCaptureKit/ScreenCaptureKit.h>

#include <mutex>
#include <thread>
#include <utility>

namespace {

using Handler = void (^)(NSError* error);

/// What belongs to the service itself and not to a test's script.
struct Service {
  std::mutex mutex;
  std::vector<std::thread> answers;
  std::vector<std::pair<Handler, std::optional<std::string>>> heldBack;
  __weak SCStream* newest = nil;
};

Service& service() {
  static auto* const service = new Service;
  return *service;
}

/// Leaves something in the caller's pool, too, as the system may.
void record(const std::string& call) {
  (void)[NSArray array];
  const std::lock_guard guard(service().mutex);
  fake::screenCapture().calls.push_back(call);
}

SCStream* newestStream() {
  const std::lock_guard guard(service().mutex);
  return service().newest;
}

NSError* errorOf(const std::optional<std::string>& description) {
  return description ? objectivec::error("SCStreamErrorDomain", -3802, *description) : nil;
}

void answer(Handler handler, const std::optional<std::string>& description) {
  const std::lock_guard guard(service().mutex);
  service().answers.emplace_back([handler, description] {
    @autoreleasepool {
      handler(errorOf(description));
    }
  });
}

void reply(Handler handler, const fake::CaptureReply& reply) {
  if (reply.comes) return answer(handler, reply.error);
  const std::lock_guard guard(service().mutex);
  service().heldBack.emplace_back(handler, reply.error);
}

}  // namespace

SCStreamFrameInfo const SCStreamFrameInfoStatus = @"SCStreamUpdateFrameStatus";

@interface FakeDisplay : SCDisplay {
 @public
  std::size_t place_;
  fake::ScreenCapture::Display facts_;
}
@end

@implementation SCDisplay
- (CGDirectDisplayID)displayID {
  return 0;
}
- (NSInteger)width {
  return 0;
}
- (NSInteger)height {
  return 0;
}
@end

@implementation FakeDisplay
- (CGDirectDisplayID)displayID {
  return facts_.id;
}
- (NSInteger)width {
  return facts_.width;
}
- (NSInteger)height {
  return facts_.height;
}
@end

@implementation SCWindow
@end

@interface FakeContent : SCShareableContent {
 @public
  NSMutableArray* displays_;
}
@end

@implementation SCShareableContent
- (NSArray<SCDisplay*>*)displays {
  return @[];
}
+ (void)getShareableContentExcludingDesktopWindows:(BOOL)excludesDesktopWindows
                               onScreenWindowsOnly:(BOOL)onScreenWindowsOnly
                                 completionHandler:(void (^)(SCShareableContent*, NSError*))handler {
  record(std::string("content") + (excludesDesktopWindows ? " without desktop" : "") +
         (onScreenWindowsOnly ? " on screen" : ""));
  FakeContent* content = [[(id)FakeContent.class alloc] init];
  content->displays_ = [NSMutableArray arrayWithCapacity:0];
  for (const auto& facts : fake::screenCapture().displays) {
    FakeDisplay* display = [[(id)FakeDisplay.class alloc] init];
    display->place_ = content->displays_.count;
    display->facts_ = facts;
    [content->displays_ addObject:display];
  }
  const bool hasContent = fake::screenCapture().hasContent && !fake::screenCapture().content.error;
  reply(
      ^(NSError* error) {
        handler(hasContent ? content : nil, error);
      },
      fake::screenCapture().content);
}
@end

@implementation FakeContent
- (NSArray<SCDisplay*>*)displays {
  return displays_;
}
@end

@implementation SCContentFilter {
 @public
  FakeDisplay* display_;
  NSUInteger excluded_;
}
- (instancetype)initWithDisplay:(SCDisplay*)display excludingWindows:(NSArray<SCWindow*>*)windows {
  display_ = static_cast<FakeDisplay*>(display);
  excluded_ = windows.count;
  return self;
}
@end

@implementation SCStreamConfiguration
@synthesize width, height, minimumFrameInterval, pixelFormat, showsCursor, preservesAspectRatio, queueDepth;
- (instancetype)init {
  width = 1920;
  height = 1080;
  showsCursor = YES;
  preservesAspectRatio = YES;
  queueDepth = 8;
  return self;
}
@end

@implementation SCStream {
 @public
  __weak id<SCStreamDelegate> delegate_;
  __weak id<SCStreamOutput> output_;
  id<SCStreamOutput> keptOutput_;
  dispatch_queue_t queue_;
}
- (instancetype)initWithFilter:(SCContentFilter*)filter
                 configuration:(SCStreamConfiguration*)configuration
                      delegate:(id<SCStreamDelegate>)delegate {
  delegate_ = delegate;
  const CMTime interval = configuration.minimumFrameInterval;
  fake::screenCapture().requests.push_back({.display = filter->display_->place_,
                                            .excludedWindows = filter->excluded_,
                                            .width = configuration.width,
                                            .height = configuration.height,
                                            .intervalValue = interval.value,
                                            .intervalScale = interval.timescale,
                                            .pixelFormat = configuration.pixelFormat,
                                            .showsCursor = configuration.showsCursor == YES,
                                            .preservesAspectRatio = configuration.preservesAspectRatio == YES,
                                            .queueDepth = configuration.queueDepth,
                                            .queueLabel = {}});
  record("stream");
  return self;
}
- (BOOL)addStreamOutput:(id<SCStreamOutput>)output
                   type:(SCStreamOutputType)type
     sampleHandlerQueue:(dispatch_queue_t)queue
                  error:(NSError**)error {
  record(type == SCStreamOutputTypeScreen ? "output" : "another output");
  if (fake::screenCapture().outputError) {
    if (error != nullptr) *error = errorOf(fake::screenCapture().outputError);
    return NO;
  }
  output_ = output;
  if (fake::screenCapture().keepsOutputs) keptOutput_ = output;
  queue_ = queue;
  fake::screenCapture().requests.back().queueLabel = dispatch::label(queue);
  fake::screenCapture().requests.back().queueQuality = dispatch::quality(queue);
  return YES;
}
- (void)startCaptureWithCompletionHandler:(Handler)handler {
  record("start");
  {
    const std::lock_guard guard(service().mutex);
    service().newest = self;
  }
  if (fake::screenCapture().whileStarting) fake::screenCapture().whileStarting();
  reply(handler, fake::screenCapture().start);
}
- (void)stopCaptureWithCompletionHandler:(Handler)handler {
  record("stop");
  if (fake::screenCapture().whileStopping) fake::screenCapture().whileStopping();
  reply(handler, fake::screenCapture().stop);
}
@end

namespace fake {

ScreenCapture& screenCapture() {
  static ScreenCapture capture;
  return capture;
}

void post(const Sample& sample) {
  @autoreleasepool {
    id object = makeSample(sample);
    const SCStreamOutputType type =
        sample.type == Sample::Type::screen ? SCStreamOutputTypeScreen : SCStreamOutputTypeAudio;
    SCStream* stream = newestStream();
    if (stream == nil) return;
    dispatch_async(stream->queue_, ^{
      [stream->output_ stream:stream
          didOutputSampleBuffer:static_cast<CMSampleBufferRef>((__bridge void*)object)
                         ofType:type];
    });
  }
}

void finishQueue() {
  @autoreleasepool {
    SCStream* stream = newestStream();
    if (stream != nil) dispatch::finish(stream->queue_);
  }
}

void deliver(const Sample& sample) {
  post(sample);
  finishQueue();
}

bool newestHasOutput() {
  @autoreleasepool {
    SCStream* stream = newestStream();
    return stream != nil && stream->output_ != nil;
  }
}

std::size_t callCount() {
  const std::lock_guard guard(service().mutex);
  return screenCapture().calls.size();
}

void failStream(const std::string& description) {
  std::thread([description] {
    // What is called has no pool but its own.
    SCStream* stream = nil;
    NSError* error = nil;
    id<SCStreamDelegate> delegate = nil;
    @autoreleasepool {
      stream = newestStream();
      error = errorOf(description);
      if (stream != nil) delegate = stream->delegate_;
    }
    [delegate stream:stream didStopWithError:error];
  }).join();
}

void answerHeldBack() {
  decltype(service().heldBack) heldBack;
  {
    const std::lock_guard guard(service().mutex);
    heldBack.swap(service().heldBack);
  }
  for (const auto& [handler, error] : heldBack) answer(handler, error);
}

void forgetHeldBack() {
  decltype(service().heldBack) heldBack;
  const std::lock_guard guard(service().mutex);
  heldBack.swap(service().heldBack);
}

void finishAnswers() {
  decltype(service().answers) answers;
  {
    const std::lock_guard guard(service().mutex);
    answers.swap(service().answers);
  }
  for (std::thread& each : answers) each.join();
}

}  // namespace fake
