#pragma once

#include "base/Geometry.hpp"

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace orvel {

class X11Connection;

/// The monitors as RandR reports them.
///
/// Threads: any; making it and `ask` wait for the server.
class MonitorList {
 public:
  struct Layout {
    std::vector<Rect> monitors;  ///< In the server's order, but the primary one first. Empty when none is on.
    Size screen;                 ///< What holds them all; the pointer never leaves it.
  };

  /// Has the server report changes to this connection.
  explicit MonitorList(const X11Connection& connection);

  /// How it is now. The whole screen is the only monitor where the server does not know of any. Nothing when the server
  /// does not answer.
  std::optional<Layout> ask() const;

  /// Whether the event says that it may be different now.
  bool isChange(const xcb_generic_event_t& event) const;

 private:
  const X11Connection& connection_;
  const std::optional<std::uint8_t> firstEvent_;  // of RandR, when the server has it
  const bool knowsMonitors_;
};

}  // namespace orvel
