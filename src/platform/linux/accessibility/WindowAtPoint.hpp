#pragma once

#include "base/Geometry.hpp"

#include <sys/types.h>

#include <functional>
#include <optional>
#include <string>

namespace orvel {

/// The window that gets the clicks at a place of the desktop. Threads: as any value.
struct WindowAtPoint {
  Rect
      frame;  ///< Of the window that its program has made, without what the window manager adds and without its shadow.
  pid_t process = 0;     ///< The program's.
  std::string title;     ///< Empty when it has none.
  bool isPopUp = false;  ///< It bypasses the window manager, as open menus do.
};

/// Finds that window, and may wait for the desktop. Nothing where there is none, where its program runs on another
/// computer, and where this desktop does not report windows. Threads: any.
using FindWindowAt = std::function<std::optional<WindowAtPoint>(Point)>;

}  // namespace orvel
