#pragma once

#include <xcb/sync.h>
#include <xcb/xcb.h>

#include <cstdint>
#include <optional>
#include <string_view>

namespace orvel {

class X11Connection;

/// A counter that the X server keeps under that name, such as its clock. None when it has no such counter. Waits for
/// the server. Threads: any.
xcb_sync_counter_t systemCounter(const X11Connection& connection, std::string_view name);

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

/// The number under which the server's input extension sends its events. Nothing when it is missing, or too old to
/// report of input also while another program has grabbed the pointer. Waits for the server. Threads: any.
std::optional<std::uint8_t> rawInputOpcode(const X11Connection& connection);

/// Has the server report raw input of these kinds from all devices, instead of those before. Threads: any.
void selectRawInput(const X11Connection& connection, std::uint32_t events);

}  // namespace orvel
