#pragma once

#include "input/TrustCheck.hpp"

namespace orvel {

/// The Accessibility permission. A grant takes effect at once, and is seen by asking again. Threads: any.
class SystemTrustCheck final : public TrustCheck {
 public:
  bool isTrusted() override;
  PermissionNotice notice() const override;
  void prompt() override;
  void openSettings() override;
};

}  // namespace orvel
