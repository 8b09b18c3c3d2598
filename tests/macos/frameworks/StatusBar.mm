#include "frameworks/StatusBar.hpp"

#include "frameworks/Messages.hpp"

#include <cstdlib>

@implementation NSControl
@synthesize target = target_;
@synthesize action = action_;
- (NSInteger)sendActionOn:(NSEventMask)mask {
  fake::statusBar().pressesThatCount = mask;
  return 0;
}
@end

@implementation NSButton
@synthesize title = title_;
@synthesize image = image_;
@end

@implementation NSStatusBarButton
- (NSWindow*)window {
  return fake::statusBar().window;
}
@end

@implementation NSStatusItem {
  NSStatusBarButton* button_;
}
@synthesize visible = visible_;
- (instancetype)init {
  button_ = [[NSStatusBarButton alloc] init];
  visible_ = !fake::statusBar().hidesItems;
  return self;
}
- (NSStatusBarButton*)button {
  return button_;
}
- (void)dealloc {
  if (fake::statusBar().item == self) fake::statusBar().item = nil;
}
@end

@implementation NSStatusBar
+ (NSStatusBar*)systemStatusBar {
  static NSStatusBar* const bar = [[NSStatusBar alloc] init];
  return bar;
}
- (NSStatusItem*)statusItemWithLength:(CGFloat)length {
  NSStatusItem* item = [[NSStatusItem alloc] init];
  fake::statusBar().item = item;
  fake::statusBar().length = length;
  // By the left button when it is let go, unless it says otherwise.
  fake::statusBar().pressesThatCount = NSEventMaskLeftMouseUp;
  return item;
}
- (void)removeStatusItem:(NSStatusItem*)item {
  if (fake::statusBar().item != item) std::abort();
  fake::statusBar().item = nil;
}
@end

namespace fake {

StatusBar& statusBar() {
  static StatusBar bar;
  return bar;
}

void pressItem(NSEventMask kind) {
  const StatusBar& bar = statusBar();
  if (bar.item == nil || (bar.pressesThatCount & kind) == 0) return;
  NSStatusBarButton* button = bar.item.button;
  if (button.target != nil && button.action != nullptr) sendMessage(button.target, button.action, button);
}

}  // namespace fake
