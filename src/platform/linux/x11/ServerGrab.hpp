#pragma once

#include "platform/linux/x11/X11Connection.hpp"

namespace orvel {

/// While it lives, the server serves no other program: what was read stays true. Never held for longer than a few
/// milliseconds, and never while an answer of another program is waited for, who could not give it. Threads: any; for
/// the server, all threads of the connection are one.
class ServerGrab {
 public:
  explicit ServerGrab(const X11Connection& connection) : connection_(connection) { xcb_grab_server(connection_.get()); }
  ~ServerGrab() {
    xcb_ungrab_server(connection_.get());
    xcb_flush(connection_.get());
  }
  ServerGrab(const ServerGrab&) = delete;
  ServerGrab& operator=(const ServerGrab&) = delete;

 private:
  const X11Connection& connection_;
};

}  // namespace orvel
