#pragma once

#import <Foundation/Foundation.h>
#include <sys/types.h>

#pragma clang assume_nonnull begin

NS_OPTIONS(NSUInteger, NSApplicationActivationOptions){
    NSApplicationActivateAllWindows = 1 << 0,
    NSApplicationActivateIgnoringOtherApps MAC_DEPRECATED(10.6, 14.0, "has no effect") = 1 << 1,
};

typedef NS_ENUM(NSInteger, NSApplicationActivationPolicy) {
  NSApplicationActivationPolicyRegular,
  NSApplicationActivationPolicyAccessory,
  NSApplicationActivationPolicyProhibited,
};

MAC_SINCE(10.6)
@interface NSRunningApplication : NSObject
@property(readonly, getter=isTerminated) BOOL terminated;
@property(readonly, getter=isActive) BOOL active;
@property(readonly) NSApplicationActivationPolicy activationPolicy;
@property(nullable, readonly, copy) NSString* localizedName;
@property(nullable, readonly, copy) NSString* bundleIdentifier;
@property(nullable, readonly, copy) NSURL* bundleURL;
@property(readonly) pid_t processIdentifier;
+ (nullable instancetype)runningApplicationWithProcessIdentifier:(pid_t)process;
- (BOOL)activateWithOptions:(NSApplicationActivationOptions)options;
- (BOOL)activateFromApplication:(NSRunningApplication*)application
                        options:(NSApplicationActivationOptions)options MAC_SINCE(14.0);
- (BOOL)terminate;
- (BOOL)forceTerminate;
@end

#pragma clang assume_nonnull end
