#pragma once

#import <ScreenCaptureKit/ScreenCaptureKit.h>

#include <memory>

namespace orvel {
class FrameOffers;
}

/// Where a stream sends its samples and its end. It knows nothing of the stream, so that neither keeps the other.
/// Threads: any.
@interface OrvelStreamOutput : NSObject <SCStreamOutput, SCStreamDelegate>
- (instancetype)initWithOffers:(std::shared_ptr<orvel::FrameOffers>)offers;
@end
