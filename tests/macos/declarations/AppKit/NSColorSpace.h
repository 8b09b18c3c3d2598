#pragma once

#import <Foundation/Foundation.h>

#pragma clang assume_nonnull begin

@interface NSColorSpace : NSObject
@property(class, readonly, strong) NSColorSpace* sRGBColorSpace MAC_SINCE(10.5);
@end

#pragma clang assume_nonnull end
