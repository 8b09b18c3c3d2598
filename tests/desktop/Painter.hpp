#pragma once

#include "desktop/Picture.hpp"

#include <xcb/xcb.h>

#include <cstdint>
#include <string>

namespace orvel {

/// Another program that draws on the desktop: a window that covers the screen, and stays out of the way of the pointer.
///
/// Threads: one at a time. Each operation waits until the server has done it.
class Painter {
 public:
  /// Covers the screen with this colour, as the screen's own format has it. Throws when there is no server.
  explicit Painter(const std::string& display, std::uint32_t colour = 0);
  ~Painter();
  Painter(const Painter&) = delete;
  Painter& operator=(const Painter&) = delete;

  void fill(int x, int y, int width, int height, std::uint32_t colour);

  /// Shows a picture with its left top corner here, on a screen with four bytes a pixel.
  void show(const Picture& picture, int x = 0, int y = 0);

  /// What the server says is on the screen, without the cursor.
  Picture screen();

  /// Moves the pointer, as a mouse would.
  void movePointer(int x, int y);

  /// Puts the pointer somewhere, as a program does, without a device.
  void warpPointer(int x, int y);

  /// Makes the cursor a block of this size and colour, its hot spot so far from the left and from the top.
  void setCursor(int width, int height, std::uint32_t colour, int hotSpot = 0);

 private:
  void sync();

  xcb_connection_t* connection_;
  xcb_screen_t* screen_ = nullptr;
  xcb_window_t window_ = 0;
  xcb_gcontext_t pen_ = 0;
};

}  // namespace orvel
