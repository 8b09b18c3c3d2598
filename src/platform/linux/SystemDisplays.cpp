#include "platform/linux/SystemDisplays.hpp"

#include "platform/linux/x11/X11Connection.hpp"

#include <xcb/randr.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace orvel {
namespace {

constexpr std::uint16_t observedChanges =
    XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE | XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE;

std::optional<std::uint8_t> firstRandREvent(const X11Connection& connection) {
  const auto* randr = connection.extension(xcb_randr_id);
  if (randr == nullptr) return std::nullopt;
  return randr->first_event;
}

Rect boundsOf(const xcb_randr_monitor_info_t& monitor) {
  return {{static_cast<double>(monitor.x), static_cast<double>(monitor.y)},
          {static_cast<double>(monitor.width), static_cast<double>(monitor.height)}};
}

/// The monitors in the server's order, but the primary one first.
std::vector<Rect> screensOf(const xcb_randr_get_monitors_reply_t& reply) {
  std::vector<Rect> screens;
  for (auto monitors = xcb_randr_get_monitors_monitors_iterator(&reply); monitors.rem > 0;
       xcb_randr_monitor_info_next(&monitors)) {
    const xcb_randr_monitor_info_t& monitor = *monitors.data;
    if (monitor.width == 0 || monitor.height == 0) continue;
    screens.insert(monitor.primary ? screens.begin() : screens.end(), boundsOf(monitor));
  }
  return screens;
}

}  // namespace

SystemDisplays::SystemDisplays(X11Connection& connection)
    : connection_(connection),
      firstEvent_(firstRandREvent(connection)),
      state_(State{std::make_shared<const DisplayLayout>(), {}}) {
  observeChanges();
  refresh();
}

std::shared_ptr<const DisplayLayout> SystemDisplays::layout() const {
  return state_.withLock([](const State& state) { return state.layout; });
}

Size SystemDisplays::screenSize() const {
  return state_.withLock([](const State& state) { return state.screenSize; });
}

void SystemDisplays::handle(const xcb_generic_event_t& event) {
  if (tellsOfChange(event)) refresh();
}

void SystemDisplays::observeChanges() {
  if (!firstEvent_) return;
  // The server speaks the newest RandR only to those who have named it.
  const auto version = xcb_randr_query_version(connection_.get(), XCB_RANDR_MAJOR_VERSION, XCB_RANDR_MINOR_VERSION);
  xcb_discard_reply(connection_.get(), version.sequence);
  xcb_randr_select_input(connection_.get(), connection_.root(), observedChanges);
}

bool SystemDisplays::tellsOfChange(const xcb_generic_event_t& event) const {
  const std::uint8_t type = event.response_type & x11EventTypeMask;
  // Monitors that the user cuts out of the screen are told of as a new geometry of the root window.
  if (type == XCB_CONFIGURE_NOTIFY) {
    return reinterpret_cast<const xcb_configure_notify_event_t&>(event).window == connection_.root();
  }
  return firstEvent_ &&
         (type == *firstEvent_ + XCB_RANDR_SCREEN_CHANGE_NOTIFY || type == *firstEvent_ + XCB_RANDR_NOTIFY);
}

void SystemDisplays::refresh() {
  auto found = ask();
  if (!found) return;
  state_.withLock([&](State& state) { state = *std::move(found); });
}

std::optional<SystemDisplays::State> SystemDisplays::ask() const {
  const auto geometryAsked = xcb_get_geometry(connection_.get(), connection_.root());
  xcb_randr_get_monitors_cookie_t monitorsAsked = {};
  if (firstEvent_) monitorsAsked = xcb_randr_get_monitors(connection_.get(), connection_.root(), true);
  const X11Answer<xcb_get_geometry_reply_t> geometry{xcb_get_geometry_reply(connection_.get(), geometryAsked, nullptr)};
  X11Answer<xcb_randr_get_monitors_reply_t> monitors;
  if (firstEvent_) monitors.reset(xcb_randr_get_monitors_reply(connection_.get(), monitorsAsked, nullptr));
  if (!geometry) return std::nullopt;

  const Size screenSize{static_cast<double>(geometry->width), static_cast<double>(geometry->height)};
  DisplayLayout layout;
  if (monitors) layout.screens = screensOf(*monitors);
  if (layout.screens.empty()) layout.screens.push_back({{0, 0}, screenSize});
  layout.main = layout.screens.front();
  return State{std::make_shared<const DisplayLayout>(std::move(layout)), screenSize};
}

}  // namespace orvel
