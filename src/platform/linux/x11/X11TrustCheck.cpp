#include "platform/linux/x11/X11TrustCheck.hpp"

#include "platform/linux/x11/X11Connection.hpp"

#include <xcb/xtest.h>

namespace orvel {

X11TrustCheck::X11TrustCheck(const X11Connection& connection)
    : connection_(connection),
      hasXTest_(connection.extension(xcb_test_id) != nullptr),
      isXwayland_(connection.isXwayland()) {}

bool X11TrustCheck::isTrusted() {
  // What the server said at first holds for as long as the connection; to ask again would be to wait for a server that
  // may hang.
  return connection_.isAlive() && hasXTest_ && !isXwayland_;
}

PermissionNotice X11TrustCheck::notice() const {
  if (!connection_.isAlive()) {
    return {.heading = "The desktop has ended",
            .explanation = "The X server has gone, so Orvel cannot move the pointer: log in, then start Orvel again."};
  }
  if (isXwayland_) return noticeOnWayland();
  return {.heading = "The X server takes no input",
          .explanation =
              "The X server does not let Orvel move the pointer: switch its XTEST extension on in the server's "
              "configuration, then log in again."};
}

PermissionNotice X11TrustCheck::noticeOnWayland() {
  return {.heading = "Orvel does not work on Wayland yet",
          .explanation =
              "In a Wayland session Orvel can neither move the pointer nor type: log out, then log in to an X11 "
              "session."};
}

}  // namespace orvel
