#include "platform/macos/SystemForeground.hpp"

#import <AppKit/AppKit.h>

#include <bit>

namespace orvel {
namespace {

NSWindow* windowOf(const ToolkitWindow& window) {
  return ((__bridge NSView*)std::bit_cast<void*>(window.nativeHandle())).window;
}

}  // namespace

void SystemForeground::becomeAccessory() {
  [NSApp setActivationPolicy:NSApplicationActivationPolicyAccessory];
}

void SystemForeground::keepOutOfList(const ToolkitWindow& window) {
  NSWindow* const panel = windowOf(window);
  // Set as a whole, since some parts exclude others and the toolkit has set one. Where the user is, even beside another
  // program's full screen, and nothing that Mission Control or the keys for windows lead to. The toolkit has put it
  // above the windows of others, as it stays on top.
  panel.collectionBehavior = NSWindowCollectionBehaviorMoveToActiveSpace | NSWindowCollectionBehaviorTransient |
                             NSWindowCollectionBehaviorIgnoresCycle | NSWindowCollectionBehaviorFullScreenAuxiliary;
  // It is shown before this program is active, which the system may even refuse.
  panel.hidesOnDeactivate = NO;
}

void SystemForeground::bring(const ToolkitWindow& window, const std::string&) {
  // The newer call, from macOS 14 on, is a mere request: the system refuses it when nothing was clicked in this
  // program, as when another start of it asks for the panel, and the panel would stay without the keyboard.
  [NSApp activateIgnoringOtherApps:YES];
  [windowOf(window) makeKeyAndOrderFront:nil];
}

}  // namespace orvel
