#include "platform/linux/x11/capture/ScreenWatch.hpp"

#include "platform/linux/x11/X11Connection.hpp"
#include "platform/linux/x11/X11Extensions.hpp"

#include <xcb/damage.h>
#include <xcb/sync.h>
#include <xcb/xfixes.h>
#include <xcb/xinput.h>

#include <cstdint>

namespace orvel {
namespace {

constexpr std::uint32_t firstFixesWithRegions = 2;

// The number is that of the first master pointer, which every server has.
constexpr const char* pointerIdleTime = "DEVICEIDLETIME 2";

/// The version of XFixes, which refuses everything to those who have not named one. 0 when the server does not have it.
std::uint32_t agreeOnFixes(const X11Connection& connection) {
  if (connection.extension(xcb_xfixes_id) == nullptr) return 0;
  const auto asked = xcb_xfixes_query_version(connection.get(), XCB_XFIXES_MAJOR_VERSION, XCB_XFIXES_MINOR_VERSION);
  const auto version = awaitReply(connection, xcb_xfixes_query_version_reply, asked);
  return version ? version->major_version : 0;
}

xcb_rectangle_t rectangleOf(const PixelRect& area) {
  return {static_cast<std::int16_t>(area.x), static_cast<std::int16_t>(area.y), static_cast<std::uint16_t>(area.width),
          static_cast<std::uint16_t>(area.height)};
}

PixelRect pixelsOf(const Rect& rect) {
  return {static_cast<int>(rect.minX()), static_cast<int>(rect.minY()), static_cast<int>(rect.size.width),
          static_cast<int>(rect.size.height)};
}

/// Every event is a reason to look, so no others than these are selected.
const X11Connection& withStructureEventsOnly(const X11Connection& connection) {
  const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
  xcb_change_window_attributes(connection.get(), connection.root(), XCB_CW_EVENT_MASK, &events);
  return connection;
}

}  // namespace

/// What was drawn on the screen, and where, by XDamage. The server reports once, and then again only after it was
/// taken.
class ScreenWatch::DamageWatch {
 public:
  /// Null when the server cannot report it.
  static std::unique_ptr<DamageWatch> start(const X11Connection& connection);

  bool isDamage(const xcb_generic_event_t& event) const {
    return (event.response_type & x11EventTypeMask) == firstEvent_ + XCB_DAMAGE_NOTIFY;
  }

  PixelRect take(const PixelRect& area);

 private:
  DamageWatch(const X11Connection& connection, std::uint8_t firstEvent);

  const X11Connection& connection_;
  const std::uint8_t firstEvent_;
  const xcb_damage_damage_t damage_;
  const xcb_xfixes_region_t drawn_;
  const xcb_xfixes_region_t area_;
};

std::unique_ptr<ScreenWatch::DamageWatch> ScreenWatch::DamageWatch::start(const X11Connection& connection) {
  const auto* damage = connection.extension(xcb_damage_id);
  if (damage == nullptr || agreeOnFixes(connection) < firstFixesWithRegions) return nullptr;
  const auto asked = xcb_damage_query_version(connection.get(), XCB_DAMAGE_MAJOR_VERSION, XCB_DAMAGE_MINOR_VERSION);
  const auto version = awaitReply(connection, xcb_damage_query_version_reply, asked);
  if (!version) return nullptr;
  return std::unique_ptr<DamageWatch>(new DamageWatch(connection, damage->first_event));
}

ScreenWatch::DamageWatch::DamageWatch(const X11Connection& connection, std::uint8_t firstEvent)
    : connection_(connection),
      firstEvent_(firstEvent),
      damage_(xcb_generate_id(connection.get())),
      drawn_(xcb_generate_id(connection.get())),
      area_(xcb_generate_id(connection.get())) {
  xcb_damage_create(connection.get(), damage_, connection.root(), XCB_DAMAGE_REPORT_LEVEL_NON_EMPTY);
  xcb_xfixes_create_region(connection.get(), drawn_, 0, nullptr);
  xcb_xfixes_create_region(connection.get(), area_, 0, nullptr);
}

PixelRect ScreenWatch::DamageWatch::take(const PixelRect& area) {
  const xcb_rectangle_t rectangle = rectangleOf(area);
  xcb_damage_subtract(connection_.get(), damage_, XCB_NONE, drawn_);
  xcb_xfixes_set_region(connection_.get(), area_, 1, &rectangle);
  xcb_xfixes_intersect_region(connection_.get(), drawn_, area_, drawn_);
  // A region may have thousands of parts, its extents have one.
  xcb_xfixes_region_extents(connection_.get(), drawn_, drawn_);
  const auto asked = xcb_xfixes_fetch_region(connection_.get(), drawn_);
  const auto reply = awaitReply(connection_, xcb_xfixes_fetch_region_reply, asked);
  if (!reply) return {};
  return {reply->extents.x, reply->extents.y, reply->extents.width, reply->extents.height};
}

/// Where the cursor is and what it looks like, by XFixes.
class ScreenWatch::CursorWatch {
 public:
  /// Null when the server cannot report it.
  static std::unique_ptr<CursorWatch> start(const X11Connection& connection);

  bool isChangeOfShape(const xcb_generic_event_t& event) const {
    return (event.response_type & x11EventTypeMask) == firstEvent_ + XCB_XFIXES_CURSOR_NOTIFY;
  }

  /// Takes such an event.
  void shapeHasChanged() { shapeIsKnown_ = false; }

  /// The cursor now. Its image is asked for only when it has changed.
  const Cursor& ask();

 private:
  CursorWatch(const X11Connection& connection, std::uint8_t firstEvent)
      : connection_(connection), firstEvent_(firstEvent) {}
  void askPlace();
  void askShape();

  const X11Connection& connection_;
  const std::uint8_t firstEvent_;
  bool shapeIsKnown_ = false;
  std::shared_ptr<const CursorShape> shape_;
  Cursor cursor_;
};

std::unique_ptr<ScreenWatch::CursorWatch> ScreenWatch::CursorWatch::start(const X11Connection& connection) {
  if (agreeOnFixes(connection) == 0) return nullptr;
  xcb_xfixes_select_cursor_input(connection.get(), connection.root(), XCB_XFIXES_CURSOR_NOTIFY_MASK_DISPLAY_CURSOR);
  return std::unique_ptr<CursorWatch>(new CursorWatch(connection, connection.extension(xcb_xfixes_id)->first_event));
}

const Cursor& ScreenWatch::CursorWatch::ask() {
  if (!shapeIsKnown_) askShape();
  askPlace();
  return cursor_;
}

void ScreenWatch::CursorWatch::askPlace() {
  const auto asked = xcb_query_pointer(connection_.get(), connection_.root());
  const auto pointer = awaitReply(connection_, xcb_query_pointer_reply, asked);
  if (!pointer) return;
  cursor_.x = pointer->root_x;
  cursor_.y = pointer->root_y;
  // A server may have several screens, of which the cursor is on one.
  cursor_.shape = pointer->same_screen ? shape_ : nullptr;
}

void ScreenWatch::CursorWatch::askShape() {
  const auto asked = xcb_xfixes_get_cursor_image(connection_.get());
  const auto image = awaitReply(connection_, xcb_xfixes_get_cursor_image_reply, asked);
  shapeIsKnown_ = true;
  shape_.reset();
  if (!image) return;
  const std::uint32_t* pixels = xcb_xfixes_get_cursor_image_cursor_image(image.get());
  const int count = xcb_xfixes_get_cursor_image_cursor_image_length(image.get());
  shape_ = std::make_shared<const CursorShape>(CursorShape{.width = image->width,
                                                           .height = image->height,
                                                           .hotX = image->xhot,
                                                           .hotY = image->yhot,
                                                           .pixels = {pixels, pixels + count}});
}

/// The motion of the pointer: by XInput what devices do, and by the time for which it was idle what programs do. A
/// mouse may move it a thousand times a second, so this is on only while there is need of it.
class ScreenWatch::PointerMotion {
 public:
  /// Null when the server cannot report it.
  static std::unique_ptr<PointerMotion> find(const X11Connection& connection);

  void setEnabled(bool isEnabled);

  /// Whether the event says that the pointer has moved.
  bool isMotion(const xcb_generic_event_t& event) const;

 private:
  PointerMotion(const X11Connection& connection, std::uint8_t opcode)
      : connection_(connection),
        opcode_(opcode),
        idleTime_(systemCounter(connection, pointerIdleTime)),
        alarm_(xcb_generate_id(connection.get())) {}
  void createAlarm();

  const X11Connection& connection_;
  const std::uint8_t opcode_;
  const xcb_sync_counter_t idleTime_;  // none when the server does not measure it
  const xcb_sync_alarm_t alarm_;
};

std::unique_ptr<ScreenWatch::PointerMotion> ScreenWatch::PointerMotion::find(const X11Connection& connection) {
  const auto opcode = rawInputOpcode(connection);
  if (!opcode) return nullptr;
  return std::unique_ptr<PointerMotion>(new PointerMotion(connection, *opcode));
}

void ScreenWatch::PointerMotion::setEnabled(bool isEnabled) {
  selectRawInput(connection_, isEnabled ? std::uint32_t{XCB_INPUT_XI_EVENT_MASK_RAW_MOTION} : 0);
  if (idleTime_ == XCB_NONE) return;
  if (isEnabled) {
    createAlarm();
  } else {
    xcb_sync_destroy_alarm(connection_.get(), alarm_);
  }
}

void ScreenWatch::PointerMotion::createAlarm() {
  const xcb_sync_create_alarm_value_list_t alarm{.counter = idleTime_,
                                                 .valueType = XCB_SYNC_VALUETYPE_ABSOLUTE,
                                                 .value = {.hi = 0, .lo = 1},
                                                 .testType = XCB_SYNC_TESTTYPE_NEGATIVE_TRANSITION,
                                                 .delta = {},
                                                 .events = 1};
  xcb_sync_create_alarm_aux(connection_.get(), alarm_,
                            XCB_SYNC_CA_COUNTER | XCB_SYNC_CA_VALUE_TYPE | XCB_SYNC_CA_VALUE | XCB_SYNC_CA_TEST_TYPE |
                                XCB_SYNC_CA_DELTA | XCB_SYNC_CA_EVENTS,
                            &alarm);
}

bool ScreenWatch::PointerMotion::isMotion(const xcb_generic_event_t& event) const {
  const std::uint8_t type = event.response_type & x11EventTypeMask;
  if (type == XCB_GE_GENERIC) {
    const auto& generic = reinterpret_cast<const xcb_ge_generic_event_t&>(event);
    return generic.extension == opcode_ && generic.event_type == XCB_INPUT_RAW_MOTION;
  }
  return idleTime_ != XCB_NONE && type == connection_.extension(xcb_sync_id)->first_event + XCB_SYNC_ALARM_NOTIFY;
}

ScreenWatch::ScreenWatch(const X11Connection& connection, std::size_t display)
    : connection_(withStructureEventsOnly(connection)),
      display_(display),
      monitors_(connection),
      damage_(DamageWatch::start(connection)),
      cursor_(CursorWatch::start(connection)),
      motion_(PointerMotion::find(connection)) {}

ScreenWatch::~ScreenWatch() = default;

void ScreenWatch::followPointer(bool wanted) {
  if (!motion_ || followsPointer_ == wanted) return;
  motion_->setEnabled(wanted);
  followsPointer_ = wanted;
}

void ScreenWatch::takeEvents() {
  while (const XCBPointer<xcb_generic_event_t> event{xcb_poll_for_event(connection_.get())}) take(*event);
}

void ScreenWatch::take(const xcb_generic_event_t& event) {
  if (monitors_.isChange(event)) layoutHasChanged_ = true;
  if (damage_ && damage_->isDamage(event)) isDamaged_ = true;
  if (cursor_ && cursor_->isChangeOfShape(event)) {
    cursor_->shapeHasChanged();
    cursorHasChanged_ = true;
  }
  // What was under way when the pointer ceased to be followed does not count any more.
  if (followsPointer_ && motion_->isMotion(event)) cursorHasChanged_ = true;
}

const PixelRect& ScreenWatch::askArea() {
  if (!layoutHasChanged_) return area_;
  layoutHasChanged_ = false;
  const auto layout = monitors_.ask();
  if (!layout) return area_;
  const bool isThere = display_ < layout->monitors.size();
  // The screen shrinks before its monitors do.
  area_ =
      isThere ? pixelsOf(layout->monitors[display_]).intersectedWith(pixelsOf({{0, 0}, layout->screen})) : PixelRect{};
  return area_;
}

PixelRect ScreenWatch::takeDamage(const PixelRect& area) {
  if (!damage_) return area;
  if (!isDamaged_) return {};
  isDamaged_ = false;
  return damage_->take(area);
}

Cursor ScreenWatch::askCursor() {
  cursorHasChanged_ = false;
  return cursor_ ? cursor_->ask() : Cursor{};
}

}  // namespace orvel
