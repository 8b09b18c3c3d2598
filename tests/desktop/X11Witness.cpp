#include "desktop/X11Witness.hpp"

#include <poll.h>
#include <xcb/xtest.h>

#include <array>
#include <cstdlib>
#include <memory>
#include <stdexcept>

namespace orvel {
namespace {

constexpr std::uint8_t eventTypeMask = 0x7f;

struct FreeMemory {
  void operator()(void* memory) const noexcept { std::free(memory); }
};
template <class Content>
using Answer = std::unique_ptr<Content, FreeMemory>;

void awaitData(xcb_connection_t* connection, Milliseconds limit) {
  pollfd awaited{xcb_get_file_descriptor(connection), POLLIN, 0};
  poll(&awaited, 1, static_cast<int>(limit.count()));
}

}  // namespace

X11Witness::X11Witness(const std::string& display) : connection_(xcb_connect(display.c_str(), nullptr)) {
  if (xcb_connection_has_error(connection_) != 0) {
    xcb_disconnect(connection_);
    throw std::runtime_error("no X server at " + display);
  }
  screen_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
  openWindow();
  takeKeyboard();
}

X11Witness::~X11Witness() {
  xcb_disconnect(connection_);
}

void X11Witness::openWindow() {
  window_ = xcb_generate_id(connection_);
  const std::array<std::uint32_t, 2> values{1, XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_BUTTON_PRESS |
                                                   XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_KEY_PRESS |
                                                   XCB_EVENT_MASK_KEY_RELEASE | XCB_EVENT_MASK_FOCUS_CHANGE};
  xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window_, screen_->root, 0, 0, screen_->width_in_pixels,
                    screen_->height_in_pixels, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                    XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values.data());
  xcb_map_window(connection_, window_);
}

void X11Witness::takeKeyboard() {
  xcb_set_input_focus(connection_, XCB_INPUT_FOCUS_NONE, window_, XCB_CURRENT_TIME);
  const Answer<xcb_get_input_focus_reply_t> focus{
      xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr)};
  if (!focus || focus->focus != window_) throw std::runtime_error("the witness has no keyboard");
}

bool X11Witness::waitFor(const std::function<bool(const Inputs&)>& isEnough, Milliseconds limit) {
  const Deadline deadline(limit);
  xcb_flush(connection_);
  while (true) {
    while (const Answer<xcb_generic_event_t> event{xcb_poll_for_event(connection_)}) take(*event);
    if (isEnough(inputs_)) return true;
    if (deadline.left() == Milliseconds(0) || xcb_connection_has_error(connection_) != 0) return false;
    awaitData(connection_, deadline.left());
  }
}

bool X11Witness::waitForCount(std::size_t count, Milliseconds limit) {
  return waitFor([&](const Inputs& inputs) { return inputs.size() >= count; }, limit);
}

const X11Witness::Inputs& X11Witness::catchUp() {
  // All that was sent before the answer has come with it.
  pointer();
  while (const Answer<xcb_generic_event_t> event{xcb_poll_for_queued_event(connection_)}) take(*event);
  return inputs_;
}

void X11Witness::take(const xcb_generic_event_t& event) {
  // The events of keys, buttons and motion are laid out alike.
  const auto& input = reinterpret_cast<const xcb_button_press_event_t&>(event);
  const auto add = [&](Kind kind, int detail) {
    inputs_.push_back({kind, detail, input.root_x, input.root_y, input.state});
  };
  switch (event.response_type & eventTypeMask) {
    case XCB_MOTION_NOTIFY:
      return add(Kind::motion, 0);
    case XCB_BUTTON_PRESS:
      return add(Kind::buttonDown, input.detail);
    case XCB_BUTTON_RELEASE:
      return add(Kind::buttonUp, input.detail);
    case XCB_KEY_PRESS:
      return add(Kind::keyDown, input.detail);
    case XCB_KEY_RELEASE:
      return add(Kind::keyUp, input.detail);
    default:
      return;
  }
}

std::pair<int, int> X11Witness::pointer() {
  const Answer<xcb_query_pointer_reply_t> reply{
      xcb_query_pointer_reply(connection_, xcb_query_pointer(connection_, screen_->root), nullptr)};
  if (!reply) throw std::runtime_error("the server has gone");
  return {reply->root_x, reply->root_y};
}

void X11Witness::movePointer(std::int16_t x, std::int16_t y) {
  xcb_test_fake_input(connection_, XCB_MOTION_NOTIFY, 0, XCB_CURRENT_TIME, screen_->root, x, y, 0);
  xcb_flush(connection_);
}

void X11Witness::setRootProperty(const std::string& name, std::uint32_t value) {
  const auto asked = xcb_intern_atom(connection_, false, static_cast<std::uint16_t>(name.size()), name.data());
  const Answer<xcb_intern_atom_reply_t> atom{xcb_intern_atom_reply(connection_, asked, nullptr)};
  if (!atom) throw std::runtime_error("the server has gone");
  xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, screen_->root, atom->atom, XCB_ATOM_WINDOW, 32, 1, &value);
  xcb_flush(connection_);
}

void X11Witness::holdServer() {
  xcb_grab_server(connection_);
  pointer();
}

void X11Witness::letGoServer() {
  xcb_ungrab_server(connection_);
  pointer();
}

std::ostream& operator<<(std::ostream& out, const X11Witness::Input& input) {
  constexpr std::array names = {"motion", "button down", "button up", "key down", "key up"};
  return out << names[static_cast<std::size_t>(input.kind)] << ' ' << input.detail << " at " << input.x << ','
             << input.y << " state " << input.state;
}

}  // namespace orvel
