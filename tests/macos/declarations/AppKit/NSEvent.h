#pragma once

#import <Foundation/Foundation.h>

#pragma clang assume_nonnull begin

@class NSGraphicsContext;

typedef NSUInteger NSEventModifierFlags;

typedef NS_ENUM(NSUInteger, NSEventType) {
  NSEventTypeSystemDefined = 14,
};

@interface NSEvent : NSObject <NSCopying>
@property(nullable, readonly) CGEventRef CGEvent;
+ (nullable NSEvent*)otherEventWithType:(NSEventType)type
                               location:(NSPoint)location
                          modifierFlags:(NSEventModifierFlags)flags
                              timestamp:(NSTimeInterval)time
                           windowNumber:(NSInteger)window
                                context:(nullable NSGraphicsContext*)context
                                subtype:(short)subtype
                                  data1:(NSInteger)data1
                                  data2:(NSInteger)data2;
@end

#pragma clang assume_nonnull end
