#pragma once

#import <CoreVideo/CoreVideo.h>
#import <Foundation/Foundation.h>

#pragma clang assume_nonnull begin

typedef NSString* CIContextOption;
MAC_EXTERN CIContextOption const kCIContextWorkingColorSpace MAC_SINCE(10.4);
MAC_EXTERN CIContextOption const kCIContextCacheIntermediates MAC_SINCE(10.12);

typedef NSString* CIImageRepresentationOption;

@interface CIImage : NSObject
+ (CIImage*)imageWithCVPixelBuffer:(CVPixelBufferRef)pixels MAC_SINCE(10.11);
@end

@interface CIContext : NSObject
+ (CIContext*)contextWithOptions:(nullable NSDictionary<CIContextOption, id>*)options MAC_SINCE(10.4);
- (nullable NSData*)JPEGRepresentationOfImage:(CIImage*)image
                                   colorSpace:(CGColorSpaceRef)colours
                                      options:(NSDictionary<CIImageRepresentationOption, id>*)options MAC_SINCE(10.12);
@end

#pragma clang assume_nonnull end
