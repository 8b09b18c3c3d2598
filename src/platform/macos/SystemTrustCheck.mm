#include "platform/macos/SystemTrustCheck.hpp"

#import <AppKit/AppKit.h>
#import <ApplicationServices/ApplicationServices.h>

namespace orvel {

bool SystemTrustCheck::isTrusted() {
  return AXIsProcessTrusted() != 0;
}

PermissionNotice SystemTrustCheck::notice() const {
  return {.heading = "Accessibility is off",
          .explanation =
              "macOS will not let Orvel move the cursor until you tick it under Privacy & Security → Accessibility.",
          .action = "Open Accessibility settings"};
}

void SystemTrustCheck::prompt() {
  @autoreleasepool {
    NSDictionary* options = @{(__bridge NSString*)kAXTrustedCheckOptionPrompt : @YES};
    AXIsProcessTrustedWithOptions((__bridge CFDictionaryRef)options);
  }
}

void SystemTrustCheck::openSettings() {
  @autoreleasepool {
    NSURL* pane =
        [NSURL URLWithString:@"x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility"];
    if (pane != nil) [NSWorkspace.sharedWorkspace openURL:pane];
  }
}

}  // namespace orvel
