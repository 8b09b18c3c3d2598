#include "platform/linux/x11/X11Windows.hpp"

#include "platform/linux/x11/X11Connection.hpp"

#include <algorithm>
#include <utility>

namespace orvel {
namespace {

/// In the order of the stack, the lowest first. Those that it does not name are left out, unless it names none of them.
std::vector<WindowID> inOrder(const std::vector<WindowID>& windows, std::vector<xcb_window_t> stack) {
  std::erase_if(
      stack, [&](xcb_window_t window) { return std::find(windows.begin(), windows.end(), window) == windows.end(); });
  return stack.empty() ? windows : stack;
}

}  // namespace

X11Windows::X11Windows(const X11Connection& connection, const X11Atoms& atoms, const ServerTime& time)
    : root_(connection.root()),
      atoms_(atoms),
      windows_(connection, atoms_),
      commands_(connection, atoms_),
      time_(time) {}

void X11Windows::observeActivation(std::function<void()> handler) {
  handler_.withLock([&](std::function<void()>& observer) { observer = std::move(handler); });
}

void X11Windows::activate(const std::vector<WindowID>& windows) {
  const auto ordered = inOrder(windows, windows_.stacking());
  if (ordered.empty()) return;
  const xcb_window_t top = ordered.back();
  const auto time = time_.now();
  // Some window managers would leave the user where he is, and some would bring the window over.
  const auto desktop = windows_.desktopOf(top);
  if (desktop && desktop != windows_.currentDesktop()) commands_.showDesktop(*desktop, time);
  for (const xcb_window_t window : ordered) commands_.raise(window);
  commands_.activate(top, time);
  commands_.flush();
}

void X11Windows::close(const std::vector<WindowID>& windows) {
  const auto time = time_.now();
  for (const xcb_window_t window : windows) {
    if (windows_.canBeAskedToClose(window)) commands_.close(window, time);
  }
  commands_.flush();
}

void X11Windows::handle(const xcb_generic_event_t& event) const {
  if ((event.response_type & x11EventTypeMask) != XCB_PROPERTY_NOTIFY) return;
  const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
  if (change.window != root_ || change.atom != atoms_.activeWindow) return;
  const auto handler = handler_.withLock([](const std::function<void()>& observer) { return observer; });
  if (handler) handler();
}

}  // namespace orvel
