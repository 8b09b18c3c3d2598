#pragma once

#include "base/Geometry.hpp"
#include "base/Guarded.hpp"
#include "input/Displays.hpp"

#include <xcb/xcb.h>

#include <cstdint>
#include <memory>
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

/// The monitors as RandR reports them. Without RandR, or without monitors, the whole screen is the only display.
///
/// Threads: any; `handle` is called on the thread of the connection.
class X11Displays final : public Displays {
 public:
  explicit X11Displays(const X11Connection& connection);

  std::shared_ptr<const DisplayLayout> layout() const override;

  /// The size of the screen that holds all monitors; the pointer never leaves it.
  Size screenSize() const;

  /// Takes an event of the server, and reads the monitors anew when they have changed.
  void handle(const xcb_generic_event_t& event);

 private:
  struct State {
    std::shared_ptr<const DisplayLayout> layout;
    Size screenSize;
  };

  void refresh();

  const MonitorList monitors_;
  Guarded<State> state_;
};

}  // namespace orvel
