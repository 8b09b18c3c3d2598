#pragma once

#pragma clang assume_nonnull begin

typedef uint64_t NSActivityOptions;
enum : NSActivityOptions {
  NSActivityIdleDisplaySleepDisabled = 1ULL << 40,
  NSActivityIdleSystemSleepDisabled = 1ULL << 20,
  NSActivityUserInitiated = 0x00FFFFFFULL | NSActivityIdleSystemSleepDisabled,
  NSActivityUserInitiatedAllowingIdleSystemSleep = NSActivityUserInitiated & ~NSActivityIdleSystemSleepDisabled,
  NSActivityBackground = 0x000000FFULL,
  NSActivityLatencyCritical = 0xFF00000000ULL,
};

@interface NSProcessInfo : NSObject
@property(class, readonly, strong) NSProcessInfo* processInfo;
- (id<NSObject>)beginActivityWithOptions:(NSActivityOptions)options reason:(NSString*)reason MAC_SINCE(10.9);
- (void)endActivity:(id<NSObject>)activity MAC_SINCE(10.9);
@end

#pragma clang assume_nonnull end
