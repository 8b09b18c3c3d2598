#include "platform/macos/SystemJPEGEncoder.hpp"

#include "platform/macos/CFPointer.hpp"

#import <CoreImage/CoreImage.h>
#import <ImageIO/ImageIO.h>

#include <utility>

namespace orvel {
namespace {

CIContext* makeContext() {
  @autoreleasepool {
    return [CIContext contextWithOptions:@{
      kCIContextCacheIntermediates : @NO,
      kCIContextWorkingColorSpace : NSNull.null
    }];
  }
}

SharedBytes shared(NSData* data) {
  const auto* bytes = static_cast<const std::uint8_t*>(data.bytes);
  const std::shared_ptr<const void> owner = CFPointer<CFTypeRef>((__bridge_retained CFTypeRef)data);
  return {.data = {owner, bytes}, .size = data.length};
}

}  // namespace

struct SystemJPEGEncoder::Renderer {
  CIContext* const context = makeContext();
  const CFPointer<CGColorSpaceRef> colours{CGColorSpaceCreateDeviceRGB()};
};

SystemJPEGEncoder::SystemJPEGEncoder() : renderer_(std::make_unique<const Renderer>()) {}

SystemJPEGEncoder::~SystemJPEGEncoder() = default;

std::optional<SharedBytes> SystemJPEGEncoder::encode(const PixelBuffer& picture, double quality) {
  if (picture.native == nullptr || !renderer_->colours) return std::nullopt;
  @autoreleasepool {
    CIImage* image = [CIImage imageWithCVPixelBuffer:static_cast<CVPixelBufferRef>(picture.native)];
    auto* const qualityKey = (__bridge CIImageRepresentationOption)kCGImageDestinationLossyCompressionQuality;
    NSData* jpeg = [renderer_->context JPEGRepresentationOfImage:image
                                                      colorSpace:renderer_->colours.get()
                                                         options:@{
                                                           qualityKey : @(quality)
                                                         }];
    if (jpeg == nil) return std::nullopt;
    return shared(jpeg);
  }
}

}  // namespace orvel
