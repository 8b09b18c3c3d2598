#pragma once

#include "platform/linux/accessibility/WindowAtPoint.hpp"

#include <optional>

namespace orvel {

class X11Connection;

/// The window that gets the clicks at a place of the X screen. Nothing where there is none, or where its program runs
/// on another computer. Waits for the server. Threads: any.
std::optional<WindowAtPoint> findWindowAt(const X11Connection& connection, Point position);

}  // namespace orvel
