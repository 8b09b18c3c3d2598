#pragma once

#include "bench/FullHDDesktop.hpp"
#include "desktop/Picture.hpp"

#include <xcb/xcb.h>

#include <cstdint>
#include <thread>

namespace orvel::bench {

/// A program that covers the screen with something that moves, 60 steps a second: a film, which is a picture of a town
/// that a camera pans over, and a page of text that scrolls. All of it lies prepared in the X server, where a step only
/// copies it. The same every time.
///
/// Threads: it moves on its own, until it goes.
class MovingScene {
 public:
  /// Throws when there is no server.
  explicit MovingScene(const FullHDDesktop& desktop);
  ~MovingScene();
  MovingScene(const MovingScene&) = delete;
  MovingScene& operator=(const MovingScene&) = delete;

 private:
  void openWindow();
  void prepare(xcb_pixmap_t pixmap, const Picture& picture);
  void move(const std::stop_token& stop);
  void show(int step);

  xcb_connection_t* const connection_;
  const xcb_screen_t& screen_;
  const xcb_window_t window_;
  const xcb_gcontext_t pen_;
  const xcb_pixmap_t film_;
  const xcb_pixmap_t text_;
  std::jthread thread_;
};

}  // namespace orvel::bench
