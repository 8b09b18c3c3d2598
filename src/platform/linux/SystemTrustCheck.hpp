#pragma once

#include "input/TrustCheck.hpp"

namespace orvel {

class X11Connection;

/// Input may be posted when the X server has XTEST and answers for it. X11 has no question to put to the user.
///
/// Threads: any. `isTrusted` waits for the server.
class SystemTrustCheck final : public TrustCheck {
 public:
  explicit SystemTrustCheck(X11Connection& connection);

  bool isTrusted() override;
  std::string advice() const override;
  bool prompt() override;
  bool openSettings() override;

 private:
  X11Connection& connection_;
};

}  // namespace orvel
