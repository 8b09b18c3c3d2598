#include "platform/macos/capture/OrvelStreamOutput.hpp"

#include "platform/macos/capture/FrameOffers.hpp"

#include <utility>

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
