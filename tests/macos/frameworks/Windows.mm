#include "frameworks/Windows.hpp"

#include <cstdlib>

@implementation NSWindow {
  NSWindowCollectionBehavior collectionBehavior_;
}
@synthesize hidesOnDeactivate = hidesOnDeactivate_;
- (NSRect)frame {
  return {};
}
- (NSWindowCollectionBehavior)collectionBehavior {
  return collectionBehavior_;
}
- (void)setCollectionBehavior:(NSWindowCollectionBehavior)behavior {
  constexpr NSWindowCollectionBehavior spaces =
      NSWindowCollectionBehaviorCanJoinAllSpaces | NSWindowCollectionBehaviorMoveToActiveSpace;
  constexpr NSWindowCollectionBehavior fullScreen =
      NSWindowCollectionBehaviorFullScreenPrimary | NSWindowCollectionBehaviorFullScreenAuxiliary;
  // What excludes each other ends the program there, too.
  if ((behavior & spaces) == spaces || (behavior & fullScreen) == fullScreen) std::abort();
  collectionBehavior_ = behavior;
}
- (void)makeKeyAndOrderFront:(id)sender {
}
@end

@implementation FakeWindow
- (NSRect)frame {
  return frame_;
}
- (void)makeKeyAndOrderFront:(id)sender {
  ++madeKey_;
}
@end

@implementation NSView
@synthesize toolTip = toolTip_;
- (NSWindow*)window {
  return nil;
}
@end

@implementation FakeView
- (NSWindow*)window {
  return window_;
}
@end

@interface FakeScreen : NSScreen {
 @public
  NSRect frame_;
}
@end

@implementation NSScreen
+ (NSArray<NSScreen*>*)screens {
  NSMutableArray<NSScreen*>* screens = [NSMutableArray array];
  for (const NSRect& frame : fake::screens()) {
    FakeScreen* screen = [[FakeScreen alloc] init];
    screen->frame_ = frame;
    [screens addObject:screen];
  }
  return screens;
}
- (NSRect)frame {
  return {};
}
@end

@implementation FakeScreen
- (NSRect)frame {
  return frame_;
}
@end

std::vector<NSRect>& fake::screens() {
  static std::vector<NSRect> frames;
  return frames;
}
