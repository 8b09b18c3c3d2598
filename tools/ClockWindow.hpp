#pragma once

#include "tools/ClockOptions.hpp"
#include "tools/TimeStrip.hpp"

#include <xcb/xcb.h>

#include <cstdint>
#include <memory>

namespace orvel::phone {

/// A window of the X server that shows a time strip and, on demand, something detailed that moves. It stands above the
/// other windows where it was asked to, whatever the window manager thinks of it.
///
/// Threads: one at a time.
class ClockWindow {
 public:
  explicit ClockWindow(const ClockOptions& options);

  /// Shows it. False when there is no X server, or none with 24 bits for a colour.
  bool open();

  /// Shows this moment, and returns when the server has drawn it. False when the server is gone.
  bool show(WallTime time);

 private:
  void makeWindow();
  void makeNoise();
  xcb_gcontext_t makePen(std::uint32_t colour);
  void drawStrip(WallTime time);
  void moveNoise();
  bool isDrawn();

  const ClockOptions options_;
  const std::unique_ptr<xcb_connection_t, void (*)(xcb_connection_t*)> connection_;
  const xcb_screen_t* screen_ = nullptr;
  xcb_window_t window_ = 0;
  xcb_pixmap_t strip_ = 0;
  xcb_pixmap_t noise_ = 0;
  xcb_gcontext_t black_ = 0;
  xcb_gcontext_t white_ = 0;
  int noiseOffset_ = 0;
};

}  // namespace orvel::phone
