#pragma once

#include "platform/linux/Backend.hpp"

namespace orvel {

/// The backend for X11. It stands for Wayland too, as far as that has Xwayland: only there a window opens beside an
/// icon.
BackendKind x11BackendKind();

}  // namespace orvel
