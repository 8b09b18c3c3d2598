#pragma once

#include <span>
#include <string>

namespace orvel {

class X11Connection;

/// Whether the X server is Xwayland, a guest on a Wayland desktop. It has X windows only: input that is posted there
/// moves a pointer that nobody sees and clicks on whatever X window lies under it, and its screen shows nothing of the
/// desktop. Sends no input to find out, at which some desktops would ask their user. Waits for the server.
/// Threads: any.
bool isXwayland(const X11Connection& connection);

/// Whether outputs of these names are those of Xwayland, or there is none, as without a monitor on Wayland.
bool areXwaylandOutputs(std::span<const std::string> names);

}  // namespace orvel
