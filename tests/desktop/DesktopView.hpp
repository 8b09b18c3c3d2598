#pragma once

#include "desktop/Picture.hpp"

#include <xcb/xcb.h>

#include <string>
#include <utility>
#include <vector>

namespace orvel {

/// What a person sees of a desktop. Threads: one at a time.
class DesktopView {
 public:
  explicit DesktopView(const std::string& display) : connection_(xcb_connect(display.c_str(), nullptr)) {}
  ~DesktopView() { xcb_disconnect(connection_); }
  DesktopView(const DesktopView&) = delete;
  DesktopView& operator=(const DesktopView&) = delete;

  /// The titles of the windows that the window manager looks after. Empty when there is none.
  std::vector<std::string> windowTitles() const;

  /// Where the pointer is.
  std::pair<int, int> pointer() const;

  /// What is shown at this moment, without the cursor. Empty when it cannot be seen.
  Picture picture() const;

  /// Writes what is shown at this moment to a PNG file. False when it cannot.
  bool photograph(const std::string& path) const;

 private:
  const xcb_screen_t* screen() const { return xcb_setup_roots_iterator(xcb_get_setup(connection_)).data; }
  std::string property(xcb_window_t window, const std::string& name) const;

  xcb_connection_t* const connection_;
};

}  // namespace orvel
