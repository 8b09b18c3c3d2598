#include "platform/linux/x11/NamedAtom.hpp"

#include "platform/linux/x11/X11Connection.hpp"

#include <cstdint>

namespace orvel {

xcb_atom_t namedAtom(const X11Connection& connection, std::string_view name) {
  const auto asked = xcb_intern_atom(connection.get(), false, static_cast<std::uint16_t>(name.size()), name.data());
  const X11Answer<xcb_intern_atom_reply_t> reply{xcb_intern_atom_reply(connection.get(), asked, nullptr)};
  return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

}  // namespace orvel
