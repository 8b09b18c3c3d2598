#pragma once

#import "NSRunningApplication.h"

#import <Foundation/Foundation.h>

#pragma clang assume_nonnull begin

typedef NSString* NSAppearanceName;
MAC_EXTERN NSAppearanceName const NSAppearanceNameAqua MAC_SINCE(10.9);
MAC_EXTERN NSAppearanceName const NSAppearanceNameDarkAqua MAC_SINCE(10.14);

@interface NSAppearance : NSObject
- (nullable NSAppearanceName)bestMatchFromAppearancesWithNames:(NSArray<NSAppearanceName>*)names MAC_SINCE(10.14);
@end

@interface NSApplication : NSObject
@property(class, readonly, strong) __kindof NSApplication* sharedApplication;
@property(readonly, strong) NSAppearance* effectiveAppearance MAC_SINCE(10.14);
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy MAC_SINCE(10.6);
- (void)activate MAC_SINCE(14.0);
- (void)activateIgnoringOtherApps:(BOOL)ignoresOthers;
@end

/// Nil until the toolkit has made the application.
MAC_EXTERN __kindof NSApplication* _Null_unspecified NSApp;

MAC_EXTERN NSNotificationName const NSApplicationDidFinishLaunchingNotification;

#pragma clang assume_nonnull end
