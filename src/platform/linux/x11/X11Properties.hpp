#pragma once

#include "platform/linux/x11/X11Connection.hpp"

#include <xcb/xcb.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace orvel {

/// The server's numbers for the names that window managers and programs speak of. All 0 when the server has gone.
///
/// Threads: as any value; making them waits for the server once.
struct X11Atoms {
  explicit X11Atoms(const X11Connection& connection);

  xcb_atom_t activeWindow = XCB_ATOM_NONE;
  xcb_atom_t clientList = XCB_ATOM_NONE;
  xcb_atom_t clientListStacking = XCB_ATOM_NONE;
  xcb_atom_t closeWindow = XCB_ATOM_NONE;
  xcb_atom_t currentDesktop = XCB_ATOM_NONE;
  xcb_atom_t deleteWindow = XCB_ATOM_NONE;
  xcb_atom_t gtkApplicationID = XCB_ATOM_NONE;
  xcb_atom_t protocols = XCB_ATOM_NONE;
  xcb_atom_t restackWindow = XCB_ATOM_NONE;
  xcb_atom_t startupID = XCB_ATOM_NONE;
  xcb_atom_t startupInfo = XCB_ATOM_NONE;
  xcb_atom_t startupInfoBegin = XCB_ATOM_NONE;
  xcb_atom_t supported = XCB_ATOM_NONE;
  xcb_atom_t supportingWindowManager = XCB_ATOM_NONE;
  xcb_atom_t utf8Text = XCB_ATOM_NONE;
  xcb_atom_t windowDesktop = XCB_ATOM_NONE;
  xcb_atom_t windowManagement = XCB_ATOM_NONE;
  xcb_atom_t windowProcess = XCB_ATOM_NONE;
  xcb_atom_t windowState = XCB_ATOM_NONE;
  xcb_atom_t windowStateSkipPager = XCB_ATOM_NONE;
  xcb_atom_t windowStateSkipTaskbar = XCB_ATOM_NONE;
  xcb_atom_t windowType = XCB_ATOM_NONE;
  xcb_atom_t windowTypeDesktop = XCB_ATOM_NONE;
  xcb_atom_t windowTypeDialog = XCB_ATOM_NONE;
  xcb_atom_t windowTypeDock = XCB_ATOM_NONE;
  xcb_atom_t windowTypeNormal = XCB_ATOM_NONE;
};

/// The number of one name. Waits for the server. None when it has gone. Threads: any.
xcb_atom_t namedAtom(xcb_connection_t* connection, std::string_view name);

/// What a window's property holds; null when the window or the server has gone.
using PropertyReply = XCBPointer<xcb_get_property_reply_t>;

/// Asks for a property, and waits for the server: at most `length` units of four bytes of it, what is longer is cut
/// off. One of another type than `type` is empty. Threads: any.
PropertyReply readProperty(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t name, std::uint32_t length,
                           xcb_atom_t type = XCB_ATOM_ANY);

/// Its numbers; none when it holds something else, or there is none.
std::vector<std::uint32_t> numbersIn(const PropertyReply& property);

/// Its bytes; none when it holds something else, or there is none.
std::string textIn(const PropertyReply& property);

}  // namespace orvel
