#include "platform/linux/x11/X11Access.hpp"

#include "platform/linux/Backend.hpp"
#include "platform/linux/x11/X11Connection.hpp"

#include <xcb/xtest.h>

#include <string>

namespace orvel {
namespace {

bool showsPixels(const X11Connection& connection) {
  const auto asked =
      xcb_get_image(connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, connection.root(), 0, 0, 1, 1, ~std::uint32_t{0});
  return awaitReply(connection, xcb_get_image_reply, asked) != nullptr;
}

}  // namespace

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

X11ScreenRecordingAccess::X11ScreenRecordingAccess(const X11Connection& connection)
    : connection_(connection), isShown_(showsPixels(connection) && !connection.isXwayland()) {}

bool X11ScreenRecordingAccess::isGranted() {
  return isShown_ && connection_.isAlive();
}

ScreenRecordingAccess::Denial X11ScreenRecordingAccess::denial() const {
  std::string reason =
      "The computer's X server does not let Orvel see its screen. Start Orvel on the desktop itself, "
      "then try again.";
  if (!connection_.isAlive()) {
    reason = "The computer's desktop has ended. Start Orvel there again, then try again.";
  } else if (connection_.isXwayland()) {
    reason =
        "Orvel cannot share the screen of a Wayland session yet. Log in to an X11 session on the computer, then "
        "try again.";
  }
  return {.onRequest = reason, .onStart = reason};
}

}  // namespace orvel
