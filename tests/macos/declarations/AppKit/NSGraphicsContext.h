#pragma once

#import <Foundation/Foundation.h>

#pragma clang assume_nonnull begin

@class NSBitmapImageRep;

typedef NS_ENUM(NSUInteger, NSImageInterpolation) {
  NSImageInterpolationDefault = 0,
  NSImageInterpolationNone = 1,
  NSImageInterpolationLow = 2,
  NSImageInterpolationHigh = 3,
  NSImageInterpolationMedium = 4,
};

@interface NSGraphicsContext : NSObject
/// Each thread has its own.
@property(class, strong, nullable) NSGraphicsContext* currentContext;
@property NSImageInterpolation imageInterpolation;
+ (nullable NSGraphicsContext*)graphicsContextWithBitmapImageRep:(NSBitmapImageRep*)bitmap;
+ (void)saveGraphicsState;
+ (void)restoreGraphicsState;
@end

#pragma clang assume_nonnull end
