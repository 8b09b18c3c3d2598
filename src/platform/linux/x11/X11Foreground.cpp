#include "platform/linux/x11/X11Foreground.hpp"

#include "platform/linux/x11/X11Connection.hpp"

#include <QGuiApplication>
#include <algorithm>
#include <array>
#include <utility>

namespace orvel {
namespace {

constexpr std::uint32_t stateChanges = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
constexpr std::uint32_t withdrawn = 0;  // as WM_STATE has it

xcb_window_t makeClock(const X11Connection& connection) {
  const xcb_window_t window = xcb_generate_id(connection.get());
  const std::uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
  xcb_create_window(connection.get(), XCB_COPY_FROM_PARENT, window, connection.root(), 0, 0, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
  return window;
}

/// Above the others, and with the keyboard.
void focus(const X11Connection& connection, xcb_window_t window, xcb_timestamp_t time) {
  const std::uint32_t above = XCB_STACK_MODE_ABOVE;
  xcb_configure_window(connection.get(), window, XCB_CONFIG_WINDOW_STACK_MODE, &above);
  xcb_set_input_focus(connection.get(), XCB_INPUT_FOCUS_PARENT, window, time);
}

}  // namespace

X11Foreground::X11Foreground(const X11Connection& connection, const X11Atoms& atoms)
    : connection_(connection),
      atoms_(atoms),
      commands_(connection, atoms_),
      notice_(connection, atoms_),
      clock_(makeClock(connection)) {}

void X11Foreground::keepOutOfList(const ToolkitWindow& window) {
  // By the toolkit's connection, as the server may not have heard of the window by it yet.
  const auto* toolkit = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
  if (toolkit == nullptr) return;
  const std::array states{atoms_.windowStateSkipTaskbar, atoms_.windowStateSkipPager};
  xcb_change_property(toolkit->connection(), XCB_PROP_MODE_APPEND, static_cast<xcb_window_t>(window.nativeHandle()),
                      atoms_.windowState, XCB_ATOM_ATOM, 32, states.size(), states.data());
}

void X11Foreground::bring(const ToolkitWindow& window, const std::string& activationToken) {
  const Wish wish{static_cast<xcb_window_t>(window.nativeHandle()), activationToken};
  const auto former = wish_.withLock([&](std::optional<Wish>& current) { return std::exchange(current, wish); });
  if (former) finishStart(former->token);
  if (!activationToken.empty()) {
    xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, wish.window, atoms_.startupID, atoms_.utf8Text, 8,
                        static_cast<std::uint32_t>(activationToken.size()), activationToken.data());
  }
  xcb_change_window_attributes(connection_.get(), wish.window, XCB_CW_EVENT_MASK, &stateChanges);
  askForTime();
}

void X11Foreground::finishStart(const std::string& activationToken) {
  if (!activationToken.empty()) notice_.end(activationToken);
}

void X11Foreground::handle(const xcb_generic_event_t& event) {
  const std::uint8_t type = event.response_type & x11EventTypeMask;
  if (type == XCB_PROPERTY_NOTIFY) {
    const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
    if (change.window == clock_) return bringAt(change.time);
  }
  if (mayBeShownNow(event)) askForTime();
}

/// The server dates every change, also one of nothing to nothing, in an event: nobody has to wait for a reply.
void X11Foreground::askForTime() const {
  xcb_change_property(connection_.get(), XCB_PROP_MODE_APPEND, clock_, atoms_.startupID, XCB_ATOM_STRING, 8, 0,
                      nullptr);
  xcb_flush(connection_.get());
}

/// Whether the window that is to be brought may have been shown now.
bool X11Foreground::mayBeShownNow(const xcb_generic_event_t& event) const {
  xcb_window_t window = XCB_WINDOW_NONE;
  switch (event.response_type & x11EventTypeMask) {
    case XCB_PROPERTY_NOTIFY: {
      const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
      if (change.atom == atoms_.windowManagement) window = change.window;
      break;
    }
    case XCB_MAP_NOTIFY:
      window = reinterpret_cast<const xcb_map_notify_event_t&>(event).window;
      break;
    default:
      break;
  }
  return window != XCB_WINDOW_NONE &&
         wish_.withLock([&](const std::optional<Wish>& wish) { return wish && wish->window == window; });
}

void X11Foreground::bringAt(xcb_timestamp_t time) {
  const auto wish = wish_.withLock([](const std::optional<Wish>& current) { return current; });
  const Way way = wish ? wayFor(wish->window) : Way::none;
  if (way == Way::none) return;
  if (way == Way::byWindowManager) commands_.activate(wish->window, time);
  if (way == Way::byServer) focus(connection_, wish->window, time);
  commands_.flush();
  finishStart(wish->token);
  wish_.withLock([&](std::optional<Wish>& current) {
    if (current == wish) current.reset();
  });
}

/// How the window can be brought at this moment.
X11Foreground::Way X11Foreground::wayFor(xcb_window_t window) const {
  const auto asked = xcb_get_window_attributes(connection_.get(), window);
  const auto attributes = awaitReply(connection_, xcb_get_window_attributes_reply, asked);
  if (!attributes) return Way::none;
  if (attributes->override_redirect || !canWindowManagerActivate()) {
    return attributes->map_state == XCB_MAP_STATE_VIEWABLE ? Way::byServer : Way::none;
  }
  const auto state = numbersOf(window, atoms_.windowManagement);
  return state.empty() || state.front() == withdrawn ? Way::none : Way::byWindowManager;
}

std::vector<std::uint32_t> X11Foreground::numbersOf(xcb_window_t window, xcb_atom_t name) const {
  constexpr std::uint32_t mostNumbers = 512;
  return numbersIn(readProperty(connection_.get(), window, name, mostNumbers));
}

bool X11Foreground::canWindowManagerActivate() const {
  const auto manager = numbersOf(connection_.root(), atoms_.supportingWindowManager);
  // One that has gone has left its word behind, but not the window that says it is there.
  if (manager.empty() || numbersOf(manager.front(), atoms_.supportingWindowManager) != manager) return false;

  const auto supported = numbersOf(connection_.root(), atoms_.supported);
  return std::find(supported.begin(), supported.end(), atoms_.activeWindow) != supported.end();
}

}  // namespace orvel
