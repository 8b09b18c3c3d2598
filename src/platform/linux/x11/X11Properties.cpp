#include "platform/linux/x11/X11Properties.hpp"

#include <array>
#include <cstddef>
#include <utility>

namespace orvel {
namespace {

using NamedAtom = std::pair<xcb_atom_t X11Atoms::*, std::string_view>;

constexpr std::array names = {
    NamedAtom{&X11Atoms::activeWindow, "_NET_ACTIVE_WINDOW"},
    NamedAtom{&X11Atoms::clientList, "_NET_CLIENT_LIST"},
    NamedAtom{&X11Atoms::clientListStacking, "_NET_CLIENT_LIST_STACKING"},
    NamedAtom{&X11Atoms::closeWindow, "_NET_CLOSE_WINDOW"},
    NamedAtom{&X11Atoms::currentDesktop, "_NET_CURRENT_DESKTOP"},
    NamedAtom{&X11Atoms::deleteWindow, "WM_DELETE_WINDOW"},
    NamedAtom{&X11Atoms::gtkApplicationID, "_GTK_APPLICATION_ID"},
    NamedAtom{&X11Atoms::protocols, "WM_PROTOCOLS"},
    NamedAtom{&X11Atoms::restackWindow, "_NET_RESTACK_WINDOW"},
    NamedAtom{&X11Atoms::startupID, "_NET_STARTUP_ID"},
    NamedAtom{&X11Atoms::startupInfo, "_NET_STARTUP_INFO"},
    NamedAtom{&X11Atoms::startupInfoBegin, "_NET_STARTUP_INFO_BEGIN"},
    NamedAtom{&X11Atoms::supported, "_NET_SUPPORTED"},
    NamedAtom{&X11Atoms::supportingWindowManager, "_NET_SUPPORTING_WM_CHECK"},
    NamedAtom{&X11Atoms::utf8Text, "UTF8_STRING"},
    NamedAtom{&X11Atoms::windowDesktop, "_NET_WM_DESKTOP"},
    NamedAtom{&X11Atoms::windowManagement, "WM_STATE"},
    NamedAtom{&X11Atoms::windowProcess, "_NET_WM_PID"},
    NamedAtom{&X11Atoms::windowState, "_NET_WM_STATE"},
    NamedAtom{&X11Atoms::windowStateSkipPager, "_NET_WM_STATE_SKIP_PAGER"},
    NamedAtom{&X11Atoms::windowStateSkipTaskbar, "_NET_WM_STATE_SKIP_TASKBAR"},
    NamedAtom{&X11Atoms::windowType, "_NET_WM_WINDOW_TYPE"},
    NamedAtom{&X11Atoms::windowTypeDesktop, "_NET_WM_WINDOW_TYPE_DESKTOP"},
    NamedAtom{&X11Atoms::windowTypeDialog, "_NET_WM_WINDOW_TYPE_DIALOG"},
    NamedAtom{&X11Atoms::windowTypeDock, "_NET_WM_WINDOW_TYPE_DOCK"},
    NamedAtom{&X11Atoms::windowTypeNormal, "_NET_WM_WINDOW_TYPE_NORMAL"},
};

xcb_intern_atom_cookie_t askForAtom(xcb_connection_t* connection, std::string_view name) {
  return xcb_intern_atom(connection, false, static_cast<std::uint16_t>(name.size()), name.data());
}

}  // namespace

X11Atoms::X11Atoms(const X11Connection& connection) {
  std::array<xcb_intern_atom_cookie_t, names.size()> asked{};
  for (std::size_t i = 0; i < names.size(); ++i) {
    asked[i] = askForAtom(connection.get(), names[i].second);
  }
  for (std::size_t i = 0; i < names.size(); ++i) {
    const auto reply = awaitReply(connection, xcb_intern_atom_reply, asked[i]);
    if (reply) this->*names[i].first = reply->atom;
  }
}

xcb_atom_t namedAtom(xcb_connection_t* connection, std::string_view name) {
  const auto reply = awaitReply(connection, xcb_intern_atom_reply, askForAtom(connection, name));
  return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

PropertyReply readProperty(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t name, std::uint32_t length,
                           xcb_atom_t type) {
  return awaitReply(connection, xcb_get_property_reply,
                    xcb_get_property(connection, false, window, name, type, 0, length));
}

std::vector<std::uint32_t> numbersIn(const PropertyReply& property) {
  if (!property || property->format != 32) return {};
  const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(property.get()));
  return {first, first + property->value_len};
}

std::string textIn(const PropertyReply& property) {
  if (!property || property->format != 8) return {};
  return {static_cast<const char*>(xcb_get_property_value(property.get())), property->value_len};
}

}  // namespace orvel
