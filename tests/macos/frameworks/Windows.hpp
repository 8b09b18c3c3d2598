#pragma once

#import <AppKit/AppKit.h>

#include <vector>

/// A window that a test makes, with a view in it as the toolkit has it.
@interface FakeWindow : NSWindow {
 @public
  NSRect frame_;
  int madeKey_;
}
@end

@interface FakeView : NSView {
 @public
  NSWindow* __unsafe_unretained window_;
}
@end

namespace fake {

/// The frames of the screens, the main one first. Tests set it anew.
std::vector<NSRect>& screens();

}  // namespace fake
