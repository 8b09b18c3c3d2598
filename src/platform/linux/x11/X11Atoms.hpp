#pragma once

#include <xcb/xcb.h>

namespace orvel {

class X11Connection;

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

}  // namespace orvel
