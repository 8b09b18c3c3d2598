#include "platform/macos/SystemForeground.hpp"

#import <AppKit/AppKit.h>

namespace orvel {
namespace {

NSWindow* windowOf(std::uintptr_t window) {
  return ((__bridge NSView*)reinterpret_cast<void*>(window)).window;
}

void activate() {
  if (@available(macOS 14.0, *)) {
    [NSApp activate];
  } else {
    [NSApp activateIgnoringOtherApps:YES];
  }
}

}  // namespace

bool SystemForeground::becomeAccessory() {
  return [NSApp setActivationPolicy:NSApplicationActivationPolicyAccessory] != NO;
}

void SystemForeground::keepOutOfList(std::uintptr_t window) {
  NSWindow* const panel = windowOf(window);
  // Set as a whole, since some parts exclude others and the toolkit has set one. Where the user is, even beside another
  // program's full screen, and nothing that Mission Control or the keys for windows lead to. The toolkit has put it
  // above the windows of others, as it stays on top.
  panel.collectionBehavior = NSWindowCollectionBehaviorMoveToActiveSpace | NSWindowCollectionBehaviorTransient |
                             NSWindowCollectionBehaviorIgnoresCycle | NSWindowCollectionBehaviorFullScreenAuxiliary;
  // It is shown before this program is active, which the system may even refuse.
  panel.hidesOnDeactivate = NO;
}

void SystemForeground::bring(std::uintptr_t window, const std::string&) {
  activate();
  [windowOf(window) makeKeyAndOrderFront:nil];
}

}  // namespace orvel
