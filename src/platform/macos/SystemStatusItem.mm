#include "platform/macos/SystemStatusItem.hpp"

#include "platform/macos/NativeText.hpp"

#import <AppKit/AppKit.h>
#import <dispatch/dispatch.h>

#include <utility>

/// The target of the button's action, which the button does not keep.
@interface OrvelStatusItemTarget : NSObject {
 @public
  orvel::StatusItem::Handlers handlers_;
}
- (void)press:(id)sender;
@end

@implementation OrvelStatusItemTarget

- (void)press:(id)sender {
  handlers_.activated();
}

@end

namespace orvel {
namespace {

NSString* const name = @"Orvel";
constexpr NSEventMask presses = NSEventMaskLeftMouseDown | NSEventMaskRightMouseDown;

NSImage* imageOf(Symbol symbol) {
  const auto symbolName = NativeText::toCF(systemName(symbol));
  NSImage* const image = [NSImage imageWithSystemSymbolName:(__bridge NSString*)symbolName.get()
                                   accessibilityDescription:name];
  // In the colour that the menu bar has its texts in.
  [image setTemplate:YES];
  return image;
}

}  // namespace

struct SystemStatusItem::Shown {
  Shown(NSStatusItem* shown, OrvelStatusItemTarget* pressed) : item(shown), target(pressed) {}
  ~Shown() { [NSStatusBar.systemStatusBar removeStatusItem:item]; }

  NSStatusItem* const item;
  OrvelStatusItemTarget* const target;
};

SystemStatusItem::SystemStatusItem() = default;

SystemStatusItem::~SystemStatusItem() = default;

void SystemStatusItem::show(Symbol symbol, Handlers handlers) {
  OrvelStatusItemTarget* const target = [[OrvelStatusItemTarget alloc] init];
  target->handlers_ = std::move(handlers);
  NSStatusItem* const item = [NSStatusBar.systemStatusBar statusItemWithLength:NSVariableStatusItemLength];
  shown_ = std::make_unique<Shown>(item, target);
  item.button.toolTip = name;
  item.button.target = target;
  item.button.action = @selector(press:);
  [item.button sendActionOn:presses];
  setSymbol(symbol);
  // Held by this alone, so that nobody is notified any more when it has gone by then.
  __weak OrvelStatusItemTarget* const weakTarget = target;
  __weak NSStatusItem* const asked = item;
  dispatch_async(dispatch_get_main_queue(), ^{
    OrvelStatusItemTarget* const living = weakTarget;
    if (living != nil) living->handlers_.decided(asked.isVisible != NO);
  });
}

void SystemStatusItem::setSymbol(Symbol symbol) {
  if (!shown_) return;
  NSStatusBarButton* const button = shown_->item.button;
  NSImage* const image = imageOf(symbol);
  button.image = image;
  // An item with neither could not be seen.
  button.title = image == nil ? name : @"";
}

bool SystemStatusItem::isShown() const {
  return shown_ != nullptr && shown_->item.isVisible != NO;
}

std::optional<Rect> SystemStatusItem::place() const {
  if (!shown_) return std::nullopt;
  NSWindow* const window = shown_->item.button.window;
  NSScreen* const mainScreen = NSScreen.screens.firstObject;
  if (window == nil || mainScreen == nil) return std::nullopt;
  const NSRect frame = window.frame;
  const NSRect whole = mainScreen.frame;
  // From the bottom there, from the top here.
  const double top = whole.origin.y + whole.size.height - (frame.origin.y + frame.size.height);
  return Rect{{frame.origin.x, top}, {frame.size.width, frame.size.height}};
}

}  // namespace orvel
