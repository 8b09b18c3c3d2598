#pragma once

#include "input/TrustCheck.hpp"

namespace orvel {

class X11Connection;

/// Input may be posted when the X server has XTEST and is the desktop's own, not Xwayland. Nothing of that is for the
/// user to permit: X11 has no such question, and no settings of a desktop change it.
///
/// Threads: any; making it waits for the server.
class X11TrustCheck final : public TrustCheck {
 public:
  explicit X11TrustCheck(const X11Connection& connection);

  /// What is said in a Wayland session, also in one without an X server.
  static PermissionNotice noticeOnWayland();

  bool isTrusted() override;
  PermissionNotice notice() const override;
  void prompt() override {}
  void openSettings() override {}

 private:
  const X11Connection& connection_;
  const bool hasXTest_;
  const bool isXwayland_;
};

}  // namespace orvel
