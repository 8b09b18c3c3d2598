#pragma once

#include "mirror/ScreenRecordingAccess.hpp"

namespace orvel {

class X11Connection;

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
