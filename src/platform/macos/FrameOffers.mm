#include "platform/macos/FrameOffers.hpp"

#include "mirror/CaptureService.hpp"

#include <optional>
#include <utility>

namespace orvel {
namespace {

dispatch_queue_t makeQueue() {
  @autoreleasepool {
    return dispatch_queue_create(
        "orvel.mirror", dispatch_queue_attr_make_with_qos_class(DISPATCH_QUEUE_SERIAL, QOS_CLASS_USER_INITIATED, 0));
  }
}

}  // namespace

/// A sample of a stream, which must outlive it. Threads: the one on which it is handed over.
class FrameOffers::Sample final : public CapturedFrame {
 public:
  Sample(CMSampleBufferRef sample, SCStreamOutputType type) : sample_(sample), type_(type) {}

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

bool FrameOffers::Sample::isScreen() const {
  return type_ == SCStreamOutputTypeScreen;
}

bool FrameOffers::Sample::isValid() const {
  return CMSampleBufferIsValid(sample_);
}

std::optional<std::int64_t> FrameOffers::Sample::status() const {
  const CFArrayRef attachments = CMSampleBufferGetSampleAttachmentsArray(sample_, false);
  NSDictionary<SCStreamFrameInfo, id>* first = ((__bridge NSArray*)attachments).firstObject;
  NSNumber* status = first[SCStreamFrameInfoStatus];
  if (![status isKindOfClass:NSNumber.class]) return std::nullopt;
  const NSInteger whole = status.integerValue;
  if (![status isEqual:@(whole)]) return std::nullopt;
  return whole;
}

const PixelBuffer* FrameOffers::Sample::pixels() {
  const CVImageBufferRef buffer = CMSampleBufferGetImageBuffer(sample_);
  if (buffer == nullptr) return nullptr;
  picture_ = {.width = static_cast<int>(CVPixelBufferGetWidth(buffer)),
              .height = static_cast<int>(CVPixelBufferGetHeight(buffer)),
              .native = buffer};
  return &picture_;
}

bool FrameOffers::Sample::showsScreen() const {
  return isScreen() && isValid() && status().value_or(SCFrameStatusComplete) == SCFrameStatusComplete &&
         CMSampleBufferGetImageBuffer(sample_) != nullptr;
}

FrameOffers::FrameOffers(int framesPerSecond, CaptureStream::Handlers handlers)
    : queue_(makeQueue()),
      frameInterval_(static_cast<std::int64_t>(NSEC_PER_SEC) / framesPerSecond),
      handlers_(std::move(handlers)) {}

void FrameOffers::sampleCame(CMSampleBufferRef sample, SCStreamOutputType type) {
  if (hasEnded_) return;
  Sample frame(sample, type);
  if (!receiverIsBlocked_) {
    offer(frame, sample);
  } else if (frame.showsScreen()) {
    keep(sample);
  }
}

void FrameOffers::offer(Sample& frame, CMSampleBufferRef sample) {
  const dispatch_time_t next = dispatch_time(DISPATCH_TIME_NOW, frameInterval_);
  const FrameAnswer answer = handlers_.frame(frame);
  if (hasEnded_) return;
  receiverIsBlocked_ = answer == FrameAnswer::blocked;
  if (!frame.showsScreen()) return;
  keep(answer == FrameAnswer::taken ? nullptr : sample);
  if (answer == FrameAnswer::again) offerAgainAt(next);
}

void FrameOffers::offerKept() {
  if (hasEnded_ || !kept_) return;
  const auto sample = std::exchange(kept_, nullptr);
  Sample frame(sample.get(), SCStreamOutputTypeScreen);
  offer(frame, sample.get());
}

void FrameOffers::keep(CMSampleBufferRef sample) {
  if (sample != nullptr) CFRetain(sample);
  kept_.reset(sample);
  ++timesKept_;
}

void FrameOffers::offerAgainAt(dispatch_time_t when) {
  const auto self = shared_from_this();
  const std::uint64_t number = timesKept_;
  dispatch_after(when, queue_, ^{
    @autoreleasepool {
      if (number == self->timesKept_) self->offerKept();
    }
  });
}

void FrameOffers::resume() {
  const auto self = shared_from_this();
  // Behind the handler that may not have returned its answer yet.
  dispatch_async(queue_, ^{
    @autoreleasepool {
      if (std::exchange(self->receiverIsBlocked_, false)) self->offerKept();
    }
  });
}

void FrameOffers::stop() {
  const auto self = shared_from_this();
  dispatch_async(queue_, ^{
    @autoreleasepool {
      if (self->hasEnded_.exchange(true)) return;
      self->kept_.reset();
      self->handlers_.stopped();
    }
  });
}

bool FrameOffers::end() {
  const bool hadEnded = hasEnded_.exchange(true);
  dispatch_sync(queue_, ^{
    kept_.reset();
  });
  return !hadEnded;
}

}  // namespace orvel
