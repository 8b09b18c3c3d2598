#pragma once

#import <Foundation/Foundation.h>

#pragma clang assume_nonnull begin

typedef NS_ENUM(NSUInteger, NSCompositingOperation) {
  NSCompositingOperationClear = 0,
  NSCompositingOperationCopy = 1,
  NSCompositingOperationSourceOver = 2,
};

typedef NSString* NSColorSpaceName;
MAC_EXTERN const NSColorSpaceName NSDeviceRGBColorSpace;

#pragma clang assume_nonnull end
