#pragma once

namespace fake {

/// Whether this login has a session of the window server's. Tests set it.
bool& hasWindowServer();

}  // namespace fake
