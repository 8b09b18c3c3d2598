#include "platform/linux/capture/ScreenWatch.hpp"

#include "platform/linux/x11/X11Connection.hpp"

namespace orvel {
namespace {

PixelRect pixelsOf(const Rect& rect) {
  return {static_cast<int>(rect.minX()), static_cast<int>(rect.minY()), static_cast<int>(rect.size.width),
          static_cast<int>(rect.size.height)};
}

/// Every event is a reason to look, so only those come that there is need of.
const X11Connection& hearingOfGeometryAlone(const X11Connection& connection) {
  const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
  xcb_change_window_attributes(connection.get(), connection.root(), XCB_CW_EVENT_MASK, &events);
  return connection;
}

}  // namespace

ScreenWatch::ScreenWatch(const X11Connection& connection, std::size_t display)
    : connection_(hearingOfGeometryAlone(connection)),
      display_(display),
      monitors_(connection),
      damage_(DamageWatch::start(connection)),
      cursor_(CursorWatch::start(connection)),
      motion_(PointerMotion::find(connection)) {}

void ScreenWatch::followPointer(bool wanted) {
  if (!motion_ || followsPointer_ == wanted) return;
  motion_->tell(wanted);
  followsPointer_ = wanted;
}

void ScreenWatch::takeEvents() {
  while (const X11Answer<xcb_generic_event_t> event{xcb_poll_for_event(connection_.get())}) take(*event);
}

void ScreenWatch::take(const xcb_generic_event_t& event) {
  if (monitors_.tellsOfChange(event)) layoutIsNew_ = true;
  if (damage_ && damage_->tellsOfDamage(event)) drawingIsNew_ = true;
  if (cursor_ && cursor_->tellsOfChange(event)) {
    cursor_->shapeHasChanged();
    cursorIsNew_ = true;
  }
  // What the server had to tell before it was told to be quiet is no news any more.
  if (followsPointer_ && motion_->tellsOfMotion(event)) cursorIsNew_ = true;
}

const PixelRect& ScreenWatch::askArea() {
  if (!layoutIsNew_) return area_;
  layoutIsNew_ = false;
  const auto layout = monitors_.ask();
  if (!layout) return area_;
  const bool isThere = display_ < layout->monitors.size();
  // The screen shrinks before its monitors do.
  area_ =
      isThere ? pixelsOf(layout->monitors[display_]).intersectedWith(pixelsOf({{0, 0}, layout->screen})) : PixelRect{};
  return area_;
}

PixelRect ScreenWatch::takeDrawing(const PixelRect& area) {
  if (!damage_) return area;
  if (!drawingIsNew_) return {};
  drawingIsNew_ = false;
  return damage_->take(area);
}

Cursor ScreenWatch::askCursor() {
  cursorIsNew_ = false;
  return cursor_ ? cursor_->ask() : Cursor{};
}

}  // namespace orvel
