#pragma once

#include <xcb/xcb.h>

#include <string_view>

namespace orvel {

class X11Connection;

/// The server's number for a name; none when the server has gone. Waits for the server. Threads: any.
xcb_atom_t namedAtom(const X11Connection& connection, std::string_view name);

}  // namespace orvel
