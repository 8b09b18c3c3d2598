#pragma once

#include "base/Guarded.hpp"
#include "input/Displays.hpp"
#include "platform/linux/x11/MonitorList.hpp"

#include <xcb/xcb.h>

#include <memory>

namespace orvel {

class X11Connection;

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
