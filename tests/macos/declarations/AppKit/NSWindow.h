#pragma once

#import <Foundation/Foundation.h>

#pragma clang assume_nonnull begin

typedef NSUInteger NSWindowCollectionBehavior;
enum : NSWindowCollectionBehavior {
  NSWindowCollectionBehaviorCanJoinAllSpaces = 1 << 0,
  NSWindowCollectionBehaviorMoveToActiveSpace = 1 << 1,
  NSWindowCollectionBehaviorTransient = 1 << 3,
  NSWindowCollectionBehaviorIgnoresCycle = 1 << 6,
  NSWindowCollectionBehaviorFullScreenPrimary = 1 << 7,
  NSWindowCollectionBehaviorFullScreenAuxiliary = 1 << 8,
};

@interface NSScreen : NSObject
/// The one with the menu bar first.
@property(class, readonly, copy) NSArray<NSScreen*>* screens;
@property(readonly) NSRect frame;
@end

@interface NSWindow : NSObject
@property(readonly) NSRect frame;
@property NSWindowCollectionBehavior collectionBehavior;
@property BOOL hidesOnDeactivate;
- (void)makeKeyAndOrderFront:(nullable id)sender;
@end

@interface NSView : NSObject
@property(nullable, readonly, assign) NSWindow* window;
@property(nullable, copy) NSString* toolTip;
@end

#pragma clang assume_nonnull end
