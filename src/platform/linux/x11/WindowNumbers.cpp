#include "platform/linux/x11/WindowNumbers.hpp"

#include "platform/linux/x11/X11Connection.hpp"

namespace orvel {
namespace {

constexpr std::uint32_t mostNumbers = 512;

}  // namespace

std::vector<std::uint32_t> readNumbers(const X11Connection& connection, xcb_window_t window, xcb_atom_t property) {
  const auto asked = xcb_get_property(connection.get(), false, window, property, XCB_ATOM_ANY, 0, mostNumbers);
  const X11Answer<xcb_get_property_reply_t> reply{xcb_get_property_reply(connection.get(), asked, nullptr)};
  if (!reply || reply->format != 32) return {};
  const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
  return {first, first + reply->value_len};
}

}  // namespace orvel
