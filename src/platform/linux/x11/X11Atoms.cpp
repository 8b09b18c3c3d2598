#include "platform/linux/x11/X11Atoms.hpp"

#include "platform/linux/x11/X11Connection.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
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

}  // namespace

X11Atoms::X11Atoms(const X11Connection& connection) {
  std::array<xcb_intern_atom_cookie_t, names.size()> asked{};
  for (std::size_t i = 0; i < names.size(); ++i) {
    const std::string_view name = names[i].second;
    asked[i] = xcb_intern_atom(connection.get(), false, static_cast<std::uint16_t>(name.size()), name.data());
  }
  for (std::size_t i = 0; i < names.size(); ++i) {
    const X11Answer<xcb_intern_atom_reply_t> reply{xcb_intern_atom_reply(connection.get(), asked[i], nullptr)};
    if (reply) this->*names[i].first = reply->atom;
  }
}

}  // namespace orvel
