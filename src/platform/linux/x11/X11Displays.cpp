#include "platform/linux/x11/X11Displays.hpp"

#include "platform/linux/x11/X11Connection.hpp"

#include <xcb/randr.h>

#include <utility>

namespace orvel {
namespace {

constexpr std::uint16_t observedChanges =
    XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE | XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE;
constexpr std::pair<std::uint32_t, std::uint32_t> firstWithMonitors{1, 5};

std::optional<std::uint8_t> firstRandREvent(const X11Connection& connection) {
  const auto* randr = connection.extension(xcb_randr_id);
  if (randr == nullptr) return std::nullopt;
  return randr->first_event;
}

/// The server speaks the newest RandR only to those who have named it.
bool agreeOnMonitors(const X11Connection& connection) {
  const auto asked = xcb_randr_query_version(connection.get(), XCB_RANDR_MAJOR_VERSION, XCB_RANDR_MINOR_VERSION);
  const auto version = awaitReply(connection, xcb_randr_query_version_reply, asked);
  return version && std::pair(version->major_version, version->minor_version) >= firstWithMonitors;
}

Rect boundsOf(const xcb_randr_monitor_info_t& monitor) {
  return {{static_cast<double>(monitor.x), static_cast<double>(monitor.y)},
          {static_cast<double>(monitor.width), static_cast<double>(monitor.height)}};
}

std::vector<Rect> monitorsOf(const xcb_randr_get_monitors_reply_t& reply) {
  std::vector<Rect> found;
  for (auto monitors = xcb_randr_get_monitors_monitors_iterator(&reply); monitors.rem > 0;
       xcb_randr_monitor_info_next(&monitors)) {
    const xcb_randr_monitor_info_t& monitor = *monitors.data;
    if (monitor.width == 0 || monitor.height == 0) continue;
    found.insert(monitor.primary ? found.begin() : found.end(), boundsOf(monitor));
  }
  return found;
}

}  // namespace

MonitorList::MonitorList(const X11Connection& connection)
    : connection_(connection),
      firstEvent_(firstRandREvent(connection)),
      knowsMonitors_(firstEvent_ && agreeOnMonitors(connection)) {
  if (firstEvent_) xcb_randr_select_input(connection_.get(), connection_.root(), observedChanges);
}

std::optional<MonitorList::Layout> MonitorList::ask() const {
  const auto geometryAsked = xcb_get_geometry(connection_.get(), connection_.root());
  xcb_randr_get_monitors_cookie_t monitorsAsked = {};
  if (knowsMonitors_) monitorsAsked = xcb_randr_get_monitors(connection_.get(), connection_.root(), true);
  const auto geometry = awaitReply(connection_, xcb_get_geometry_reply, geometryAsked);
  XCBPointer<xcb_randr_get_monitors_reply_t> monitors;
  if (knowsMonitors_) monitors = awaitReply(connection_, xcb_randr_get_monitors_reply, monitorsAsked);
  if (!geometry || (knowsMonitors_ && !monitors)) return std::nullopt;

  const Size screen{static_cast<double>(geometry->width), static_cast<double>(geometry->height)};
  if (!monitors) return Layout{.monitors = {{{0, 0}, screen}}, .screen = screen};
  return Layout{.monitors = monitorsOf(*monitors), .screen = screen};
}

bool MonitorList::isChange(const xcb_generic_event_t& event) const {
  const std::uint8_t type = event.response_type & x11EventTypeMask;
  // Monitors that the user cuts out of the screen come as a new geometry of the root window.
  if (type == XCB_CONFIGURE_NOTIFY) {
    return reinterpret_cast<const xcb_configure_notify_event_t&>(event).window == connection_.root();
  }
  return firstEvent_ &&
         (type == *firstEvent_ + XCB_RANDR_SCREEN_CHANGE_NOTIFY || type == *firstEvent_ + XCB_RANDR_NOTIFY);
}

X11Displays::X11Displays(const X11Connection& connection)
    : monitors_(connection), state_(State{std::make_shared<const DisplayLayout>(), {}}) {
  refresh();
}

std::shared_ptr<const DisplayLayout> X11Displays::layout() const {
  return state_.withLock([](const State& state) { return state.layout; });
}

Size X11Displays::screenSize() const {
  return state_.withLock([](const State& state) { return state.screenSize; });
}

void X11Displays::handle(const xcb_generic_event_t& event) {
  if (monitors_.isChange(event)) refresh();
}

void X11Displays::refresh() {
  auto found = monitors_.ask();
  if (!found) return;
  DisplayLayout layout{.main = {}, .screens = std::move(found->monitors)};
  if (layout.screens.empty()) layout.screens.push_back({{0, 0}, found->screen});
  layout.main = layout.screens.front();
  const State now{std::make_shared<const DisplayLayout>(std::move(layout)), found->screen};
  state_.withLock([&](State& state) { state = now; });
}

}  // namespace orvel
