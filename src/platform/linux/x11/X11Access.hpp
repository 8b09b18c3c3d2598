#pragma once

#include "input/TrustCheck.hpp"
#include "mirror/ScreenRecordingAccess.hpp"

namespace orvel {

class X11Connection;

/// Input may be posted when the X server has XTEST and is the desktop's own, not Xwayland. Nothing of that is for the
/// user to permit: X11 has no such question, and no settings of a desktop change it.
///
/// Threads: any; making it waits for the server.
class X11TrustCheck final : public TrustCheck {
 public:
  explicit X11TrustCheck(const X11Connection& connection);

  bool isTrusted() override;
  PermissionNotice notice() const override;
  void prompt() override {}
  void openSettings() override {}

 private:
  const X11Connection& connection_;
  const bool hasXTest_;
  const bool isXwayland_;
};

/// The screen may be captured when the X server shows it: found out by trying once, at the start. An X server that is
/// only a guest of another desktop (Xwayland) has nothing of it to show. X11 has no question to put to the user.
///
/// Threads: any; making it waits for the server.
class X11ScreenRecordingAccess final : public ScreenRecordingAccess {
 public:
  explicit X11ScreenRecordingAccess(const X11Connection& connection);

  bool isGranted() override;
  Denial denial() const override;
  void request() override {}

 private:
  const X11Connection& connection_;
  const bool isShown_;
};

}  // namespace orvel
