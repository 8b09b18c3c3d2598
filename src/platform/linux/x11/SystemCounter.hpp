#pragma once

#include <xcb/sync.h>

#include <string_view>

namespace orvel {

class X11Connection;

/// A counter that the X server keeps under that name, such as its clock. None when it has no such counter. Waits for
/// the server. Threads: any.
xcb_sync_counter_t systemCounter(const X11Connection& connection, std::string_view name);

}  // namespace orvel
