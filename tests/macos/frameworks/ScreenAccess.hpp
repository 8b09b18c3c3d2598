#pragma once

/// The system's answers about the Screen Recording permission, in place of CoreGraphics.
namespace fake {

struct ScreenAccess {
  bool isGranted = false;
  int requests = 0;  ///< How often the user was asked.
};

/// Tests set it anew.
ScreenAccess& screenAccess();

}  // namespace fake
