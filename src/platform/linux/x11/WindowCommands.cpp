#include "platform/linux/x11/WindowCommands.hpp"

#include "platform/linux/x11/X11Connection.hpp"

#include <algorithm>

namespace orvel {
namespace {

/// Says that the user wants it, not a program of its own accord.
constexpr std::uint32_t fromUser = 2;

}  // namespace

void WindowCommands::activate(xcb_window_t window, xcb_timestamp_t time) const {
  send(window, atoms_.activeWindow, {fromUser, time});
}

void WindowCommands::raise(xcb_window_t window) const {
  send(window, atoms_.restackWindow, {fromUser, XCB_WINDOW_NONE, XCB_STACK_MODE_ABOVE});
}

void WindowCommands::close(xcb_window_t window, xcb_timestamp_t time) const {
  send(window, atoms_.closeWindow, {time, fromUser});
}

void WindowCommands::showDesktop(std::uint32_t desktop, xcb_timestamp_t time) const {
  send(connection_.root(), atoms_.currentDesktop, {desktop, time});
}

void WindowCommands::flush() const {
  xcb_flush(connection_.get());
}

void WindowCommands::send(xcb_window_t window, xcb_atom_t type, const Words& words) const {
  xcb_client_message_event_t message{
      .response_type = XCB_CLIENT_MESSAGE, .format = 32, .sequence = 0, .window = window, .type = type, .data = {}};
  std::copy(words.begin(), words.end(), message.data.data32);
  xcb_send_event(connection_.get(), false, connection_.root(),
                 XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                 reinterpret_cast<const char*>(&message));
}

}  // namespace orvel
