#pragma once

#import <AppKit/AppKit.h>

/// The right part of the menu bar.
namespace fake {

struct StatusBar {
  /// The item that was made last, while it is alive and shown.
  __unsafe_unretained NSStatusItem* item = nil;
  CGFloat length = 0;
  NSEventMask pressesThatCount = 0;
  /// The window of its button; tests set it.
  __unsafe_unretained NSWindow* window = nil;
  bool hidesItems = false;
};

/// Tests set it anew.
StatusBar& statusBar();

/// A press of that kind on the item, which is a mask of its own.
void pressItem(NSEventMask kind);

}  // namespace fake
