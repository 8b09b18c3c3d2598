#pragma once

#include "base/Geometry.hpp"
#include "platform/linux/x11/X11Connection.hpp"

#include <sys/types.h>

#include <optional>
#include <string>

namespace orvel {

/// The window that gets the clicks at a place of the desktop.
///
/// Threads: as any value; making one waits for the server.
struct WindowAtPoint {
  Rect
      frame;  ///< Of the window that its program has made, without what the window manager adds and without its shadow.
  pid_t process = 0;     ///< The program's.
  std::string title;     ///< Empty when it tells none.
  bool isPopUp = false;  ///< It bypasses the window manager, as open menus do.

  /// Nothing where there is none, or where its program runs on another computer.
  static std::optional<WindowAtPoint> find(const X11Connection& connection, Point position);
};

}  // namespace orvel
