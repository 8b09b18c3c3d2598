#pragma once

#include <xcb/sync.h>
#include <xcb/xcb.h>

namespace orvel {

class X11Connection;

/// The clock by which the X server dates its events. Window managers measure by it who was there first.
///
/// Threads: any; making it and `now` wait for the server.
class ServerTime {
 public:
  explicit ServerTime(const X11Connection& connection);

  /// XCB_CURRENT_TIME when the server does not say.
  xcb_timestamp_t now() const;

 private:
  const X11Connection& connection_;
  const xcb_sync_counter_t counter_;  // none when the server has no such clock
};

}  // namespace orvel
