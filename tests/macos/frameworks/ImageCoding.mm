#include "frameworks/ImageCoding.hpp"

#import <CoreImage/CoreImage.h>
#import <ImageIO/ImageIO.h>

#include <cstdint>

extern "C" {

CIContextOption const kCIContextWorkingColorSpace = @"working_color_space";
CIContextOption const kCIContextCacheIntermediates = @"cache_intermediates";
const CFStringRef kCGImageDestinationLossyCompressionQuality =
    (__bridge CFStringRef) @"kCGImageDestinationLossyCompressionQuality";
}

@interface FakeColours : NSObject
@end
@implementation FakeColours
@end

extern "C" CGColorSpaceRef CGColorSpaceCreateDeviceRGB() {
  if (!fake::imageCoding().hasColours) return nullptr;
  FakeColours* colours = [[FakeColours alloc] init];
  fake::imageCoding().colours = (__bridge void*)colours;
  return static_cast<CGColorSpaceRef>((__bridge_retained void*)colours);
}

@implementation CIImage {
 @public
  id pixels_;
}
+ (CIImage*)imageWithCVPixelBuffer:(CVPixelBufferRef)pixels {
  CIImage* image = [[CIImage alloc] init];
  image->pixels_ = (__bridge id) static_cast<void*>(pixels);
  return image;
}
@end

@implementation CIContext
+ (CIContext*)contextWithOptions:(NSDictionary<CIContextOption, id>*)options {
  fake::ImageCoding& coding = fake::imageCoding();
  ++coding.contexts;
  if (NSNumber* caches = options[kCIContextCacheIntermediates]) coding.cachesIntermediates = caches.boolValue;
  coding.managesColours = options[kCIContextWorkingColorSpace] != NSNull.null;
  return [[CIContext alloc] init];
}
- (NSData*)JPEGRepresentationOfImage:(CIImage*)image
                          colorSpace:(CGColorSpaceRef)colours
                             options:(NSDictionary<CIImageRepresentationOption, id>*)options {
  fake::ImageCoding& coding = fake::imageCoding();
  coding.usedColours = colours;
  coding.pictures.push_back((__bridge void*)image->pixels_);
  NSNumber* quality = options[(__bridge NSString*)kCGImageDestinationLossyCompressionQuality];
  coding.qualities.push_back(quality == nil ? -1 : quality.doubleValue);
  if (!coding.works) return nil;
  const std::vector<std::uint8_t> content(coding.size, 0xff);
  NSData* data = [NSData dataWithBytes:content.data() length:content.size()];
  coding.bytes = data.bytes;
  return data;
}
@end

namespace fake {

ImageCoding& imageCoding() {
  static ImageCoding coding;
  return coding;
}

}  // namespace fake
