#pragma once

#include "base/Guarded.hpp"
#include "platform/linux/applications/DesktopWindows.hpp"
#include "platform/linux/x11/WindowList.hpp"
#include "platform/linux/x11/X11Extensions.hpp"
#include "platform/linux/x11/X11Properties.hpp"

#include <xcb/xcb.h>

#include <functional>

namespace orvel {

class X11Connection;

/// The windows that the window manager publishes in properties, and what it does with them when the user wishes it.
///
/// Threads: any; `handle` is called on the thread of the connection and calls the observer there.
class X11Windows final : public DesktopWindows {
 public:
  X11Windows(const X11Connection& connection, const X11Atoms& atoms, const ServerTime& time);

  void observeActivation(std::function<void()> handler) override;
  std::optional<std::vector<ManagedWindow>> read() override { return windows_.read(); }
  void activate(const std::vector<WindowID>& windows) override;
  void close(const std::vector<WindowID>& windows) override;

  /// Takes an event of the server.
  void handle(const xcb_generic_event_t& event) const;

 private:
  const xcb_window_t root_;
  const X11Atoms& atoms_;
  const WindowList windows_;
  const WindowCommands commands_;
  const ServerTime& time_;
  Guarded<std::function<void()>> handler_;
};

}  // namespace orvel
