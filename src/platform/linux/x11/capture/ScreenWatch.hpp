#pragma once

#include "platform/linux/capture/PixelRect.hpp"
#include "platform/linux/x11/X11Displays.hpp"
#include "platform/linux/x11/capture/CursorOverlay.hpp"

#include <xcb/xcb.h>

#include <cstddef>
#include <memory>

namespace orvel {

class X11Connection;

/// What the X server reports of one display: where it is, what is drawn on it, and the cursor. It reports each kind of
/// change once, until it is asked.
///
/// Threads: one at a time; making it and whatever is called "ask" or "take" wait for the server, but for `takeEvents`.
class ScreenWatch {
 public:
  /// `display` is its place in the list of monitors.
  ScreenWatch(const X11Connection& connection, std::size_t display);
  ~ScreenWatch();
  ScreenWatch(const ScreenWatch&) = delete;
  ScreenWatch& operator=(const ScreenWatch&) = delete;

  /// Whether there is an event for all that happens. Otherwise the server must be polled.
  bool reportsEverything() const { return damage_ && motion_ && cursor_; }
  bool reportsDamage() const { return damage_ != nullptr; }

  /// Turns the events of the pointer's motion on or off.
  void followPointer(bool wanted);

  /// Takes the events that have come by now.
  void takeEvents();

  /// Whether anything has changed that was not asked for yet. Of a display that is not there only its return counts.
  bool hasChanges() const { return layoutHasChanged_ || (!area_.isEmpty() && (isDamaged_ || cursorHasChanged_)); }

  /// Where the display is now, as far as the X screen reaches. Empty while it is not there.
  const PixelRect& askArea();

  /// The smallest rectangle within `area` around what was drawn there since the last call.
  PixelRect takeDamage(const PixelRect& area);

  Cursor askCursor();

 private:
  class CursorWatch;
  class DamageWatch;
  class PointerMotion;

  void take(const xcb_generic_event_t& event);

  const X11Connection& connection_;
  const std::size_t display_;
  const MonitorList monitors_;
  const std::unique_ptr<DamageWatch> damage_;    // null when the server has no such events
  const std::unique_ptr<CursorWatch> cursor_;    // null when the server has no such events
  const std::unique_ptr<PointerMotion> motion_;  // null when the server has no such events
  PixelRect area_;
  bool followsPointer_ = false;
  bool layoutHasChanged_ = true;
  bool isDamaged_ = true;
  bool cursorHasChanged_ = true;
};

}  // namespace orvel
