#pragma once

#import "NSColorSpace.h"
#import "NSGraphics.h"

#pragma clang assume_nonnull begin

typedef NS_ENUM(NSUInteger, NSBitmapImageFileType) {
  NSBitmapImageFileTypeTIFF = 0,
  NSBitmapImageFileTypeJPEG = 3,
  NSBitmapImageFileTypePNG = 4,
};
typedef NSString* NSBitmapImageRepPropertyKey;

@interface NSImageRep : NSObject <NSCopying>
@property NSSize size;
@end

@interface NSBitmapImageRep : NSImageRep
- (nullable instancetype)initWithBitmapDataPlanes:(unsigned char* _Nullable* _Nullable)planes
                                       pixelsWide:(NSInteger)width
                                       pixelsHigh:(NSInteger)height
                                    bitsPerSample:(NSInteger)bitsPerSample
                                  samplesPerPixel:(NSInteger)samplesPerPixel
                                         hasAlpha:(BOOL)alpha
                                         isPlanar:(BOOL)isPlanar
                                   colorSpaceName:(NSColorSpaceName)colorSpaceName
                                      bytesPerRow:(NSInteger)bytesPerRow
                                     bitsPerPixel:(NSInteger)bitsPerPixel;
- (nullable NSBitmapImageRep*)bitmapImageRepByRetaggingWithColorSpace:(NSColorSpace*)space MAC_SINCE(10.6);
- (nullable NSData*)representationUsingType:(NSBitmapImageFileType)type
                                 properties:(NSDictionary<NSBitmapImageRepPropertyKey, id>*)properties;
@end

#pragma clang assume_nonnull end
