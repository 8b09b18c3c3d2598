#pragma once

/// What draws the desktop. Threads: any.
namespace orvel::WindowServer {

/// Whether this login has a session of its. One over the network alone has none.
bool isThere();

}  // namespace orvel::WindowServer
