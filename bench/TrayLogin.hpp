#pragma once

#include "desktop/SessionBus.hpp"
#include "desktop/TrayHost.hpp"
#include "desktop/VirtualDesktop.hpp"
#include "desktop/WindowManager.hpp"

namespace orvel::bench {

/// A desktop as people have it: a window manager, a message bus, and a panel of somebody else with a tray in it.
///
/// Threads: one at a time.
struct TrayLogin {
  explicit TrayLogin(TrayHost::Kind kind) : tray(desktop, bus, {.kind = kind}) { tray.start(); }

  VirtualDesktop desktop;
  SessionBus bus{desktop};
  WindowManager windowManager{desktop};
  TrayHost tray;
};

}  // namespace orvel::bench
