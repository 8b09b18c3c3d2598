#pragma once

#include <xcb/xcb.h>

#include <atomic>
#include <map>
#include <string>

namespace orvel {

class X11Connection;

/// The settings that the desktop hands out by the X server, and what tells that they are different now.
///
/// Threads: made by its owner, then that of the connection. Making it and `read` wait for the server.
class XSettingsWatch {
 public:
  explicit XSettingsWatch(const X11Connection& connection);

  /// The texts among them; from now on the server tells when they change. Empty where nobody hands them out.
  std::map<std::string, std::string> read();

  /// Whether the event says that they may be different now.
  bool tellsOfChange(const xcb_generic_event_t& event) const;

 private:
  const X11Connection& connection_;
  const xcb_atom_t selection_;     // whose owner hands them out
  const xcb_atom_t announcement_;  // by which a new owner makes itself known
  std::atomic<xcb_window_t> manager_ = XCB_WINDOW_NONE;
};

}  // namespace orvel
