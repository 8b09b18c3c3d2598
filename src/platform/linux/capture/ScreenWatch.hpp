#pragma once

#include "platform/linux/capture/Cursor.hpp"
#include "platform/linux/capture/CursorWatch.hpp"
#include "platform/linux/capture/DamageWatch.hpp"
#include "platform/linux/capture/PixelRect.hpp"
#include "platform/linux/capture/PointerMotion.hpp"
#include "platform/linux/x11/MonitorList.hpp"

#include <cstddef>
#include <memory>
#include <optional>

namespace orvel {

class X11Connection;

/// What the X server tells of one display: where it is, what is drawn on it, and the cursor. It tells of each kind of
/// news once, until it is asked.
///
/// Threads: one at a time; making it and whatever is called "ask" or "take" wait for the server, but for `takeEvents`.
class ScreenWatch {
 public:
  /// `display` is its place in the list of monitors.
  ScreenWatch(const X11Connection& connection, std::size_t display);

  /// Whether the server tells of all that happens. Otherwise it must be asked again and again.
  bool tellsAll() const { return damage_ && motion_ && cursor_; }
  bool tellsOfDrawing() const { return damage_ != nullptr; }

  /// Has it tell of motion of the pointer, or be quiet about that.
  void followPointer(bool wanted);

  /// Takes what the server has told by now.
  void takeEvents();

  /// Whether it has told of anything that was not asked for yet. Of a display that is not there only its return is
  /// news.
  bool hasNews() const { return layoutIsNew_ || (!area_.isEmpty() && (drawingIsNew_ || cursorIsNew_)); }

  /// Where the display is now, as far as the X screen reaches. Empty while it is not there.
  const PixelRect& askArea();

  /// The smallest rectangle within `area` around what was drawn there since the last call.
  PixelRect takeDrawing(const PixelRect& area);

  Cursor askCursor();

 private:
  void take(const xcb_generic_event_t& event);

  const X11Connection& connection_;
  const std::size_t display_;
  const MonitorList monitors_;
  const std::unique_ptr<DamageWatch> damage_;    // null when the server cannot tell
  const std::unique_ptr<CursorWatch> cursor_;    // null when the server cannot tell
  const std::unique_ptr<PointerMotion> motion_;  // null when the server cannot tell
  PixelRect area_;
  bool followsPointer_ = false;
  bool layoutIsNew_ = true;
  bool drawingIsNew_ = true;
  bool cursorIsNew_ = true;
};

}  // namespace orvel
