#include "platform/macos/SystemTrustCheck.hpp"

#import <AppKit/AppKit.h>
#import <ApplicationServices/ApplicationServices.h>

namespace orvel {

bool SystemTrustCheck::isTrusted() {
  return AXIsProcessTrusted() != 0;
}

bool SystemTrustCheck::prompt() {
  @autoreleasepool {
    NSDictionary* options = @{(__bridge NSString*)kAXTrustedCheckOptionPrompt : @YES};
    AXIsProcessTrustedWithOptions((__bridge CFDictionaryRef)options);
    return true;
  }
}

bool SystemTrustCheck::openSettings() {
  @autoreleasepool {
    NSURL* pane =
        [NSURL URLWithString:@"x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility"];
    return pane != nil && [NSWorkspace.sharedWorkspace openURL:pane];
  }
}

}  // namespace orvel
