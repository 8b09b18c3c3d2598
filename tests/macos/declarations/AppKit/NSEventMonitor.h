#pragma once

#import "NSEvent.h"

#pragma clang assume_nonnull begin

typedef unsigned long long NSEventMask;
enum : NSEventMask {
  NSEventMaskLeftMouseDown = 1ULL << 1,
  NSEventMaskLeftMouseUp = 1ULL << 2,
  NSEventMaskRightMouseDown = 1ULL << 3,
  NSEventMaskRightMouseUp = 1ULL << 4,
  NSEventMaskOtherMouseDown = 1ULL << 25,
};

@interface NSEvent (Monitor)
+ (nullable id)addGlobalMonitorForEventsMatchingMask:(NSEventMask)mask
                                             handler:(void (^)(NSEvent* event))handler MAC_SINCE(10.6);
+ (nullable id)addLocalMonitorForEventsMatchingMask:(NSEventMask)mask
                                            handler:(NSEvent* _Nullable (^)(NSEvent* event))handler MAC_SINCE(10.6);
+ (void)removeMonitor:(id)monitor MAC_SINCE(10.6);
@end

#pragma clang assume_nonnull end
