#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <vector>

namespace orvel {

class X11Connection;

/// The numbers that stand in a property of a window, the first few hundred of them. Empty where there are none. Waits
/// for the server. Threads: any.
std::vector<std::uint32_t> readNumbers(const X11Connection& connection, xcb_window_t window, xcb_atom_t property);

}  // namespace orvel
