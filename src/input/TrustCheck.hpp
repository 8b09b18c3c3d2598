#pragma once

#include "base/PermissionNotice.hpp"

namespace orvel {

/// The desktop's answer to "may this program post input?". Threads: any.
class TrustCheck {
 public:
  virtual ~TrustCheck() = default;

  /// Asks the desktop now.
  virtual bool isTrusted() = 0;

  /// Why it may not, and what its user can do about it. Means nothing while it may.
  virtual PermissionNotice notice() const = 0;

  /// Has the desktop ask the user for the permission, where it has such a question.
  virtual void prompt() = 0;

  /// Opens the desktop's settings where the permission is given, where it has them.
  virtual void openSettings() = 0;
};

}  // namespace orvel
