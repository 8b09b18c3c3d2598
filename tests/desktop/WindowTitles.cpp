#include "desktop/WindowTitles.hpp"

#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>

namespace orvel {
namespace {

constexpr std::uint32_t longestProperty = 1024;

struct Free {
  void operator()(void* memory) const noexcept { std::free(memory); }
};

/// The bytes of a window's property; none when it has no such.
std::string property(xcb_connection_t* connection, xcb_window_t window, std::string_view name) {
  const auto askedAtom = xcb_intern_atom(connection, true, static_cast<std::uint16_t>(name.size()), name.data());
  const std::unique_ptr<xcb_intern_atom_reply_t, Free> atom(xcb_intern_atom_reply(connection, askedAtom, nullptr));
  if (!atom || atom->atom == XCB_ATOM_NONE) return {};
  const auto asked = xcb_get_property(connection, false, window, atom->atom, XCB_ATOM_ANY, 0, longestProperty);
  const std::unique_ptr<xcb_get_property_reply_t, Free> value(xcb_get_property_reply(connection, asked, nullptr));
  if (!value) return {};
  const auto* bytes = static_cast<const char*>(xcb_get_property_value(value.get()));
  return {bytes, static_cast<std::size_t>(xcb_get_property_value_length(value.get()))};
}

}  // namespace

std::vector<std::string> windowTitles(const std::string& display) {
  const std::unique_ptr<xcb_connection_t, decltype(&xcb_disconnect)> connection(xcb_connect(display.c_str(), nullptr),
                                                                                &xcb_disconnect);
  if (xcb_connection_has_error(connection.get()) != 0) return {};
  const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection.get())).data->root;
  const std::string list = property(connection.get(), root, "_NET_CLIENT_LIST");
  std::vector<std::string> titles;
  for (std::size_t at = 0; at + sizeof(xcb_window_t) <= list.size(); at += sizeof(xcb_window_t)) {
    xcb_window_t window = XCB_WINDOW_NONE;
    list.copy(reinterpret_cast<char*>(&window), sizeof(window), at);
    titles.push_back(property(connection.get(), window, "_NET_WM_NAME"));
  }
  return titles;
}

}  // namespace orvel
