#include "platform/macos/capture/SampleFrame.hpp"

namespace orvel {

bool SampleFrame::isScreen() const {
  return type_ == SCStreamOutputTypeScreen;
}

bool SampleFrame::isValid() const {
  return CMSampleBufferIsValid(sample_);
}

std::optional<std::int64_t> SampleFrame::status() const {
  const CFArrayRef attachments = CMSampleBufferGetSampleAttachmentsArray(sample_, false);
  NSDictionary<SCStreamFrameInfo, id>* first = ((__bridge NSArray*)attachments).firstObject;
  NSNumber* status = first[SCStreamFrameInfoStatus];
  if (![status isKindOfClass:NSNumber.class]) return std::nullopt;
  const NSInteger whole = status.integerValue;
  if (![status isEqual:@(whole)]) return std::nullopt;
  return whole;
}

const PixelBuffer* SampleFrame::pixels() {
  const CVImageBufferRef buffer = CMSampleBufferGetImageBuffer(sample_);
  if (buffer == nullptr) return nullptr;
  picture_ = {.width = static_cast<int>(CVPixelBufferGetWidth(buffer)),
              .height = static_cast<int>(CVPixelBufferGetHeight(buffer)),
              .native = buffer};
  return &picture_;
}

bool SampleFrame::showsScreen() const {
  return isScreen() && isValid() && status().value_or(SCFrameStatusComplete) == SCFrameStatusComplete &&
         CMSampleBufferGetImageBuffer(sample_) != nullptr;
}

}  // namespace orvel
