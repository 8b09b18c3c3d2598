#pragma once

#include <string>

namespace orvel {

/// The desktop's answer to "may this program post input?". Threads: any.
class TrustCheck {
 public:
  virtual ~TrustCheck() = default;

  /// Asks the desktop now.
  virtual bool isTrusted() = 0;

  /// What its user can do here to give the permission, where that is not what macOS asks for; otherwise empty.
  virtual std::string advice() const = 0;

  /// Has the desktop ask the user for the permission. False where the desktop has no such question.
  virtual bool prompt() = 0;

  /// Opens the desktop's accessibility settings. False when it has none that we know of.
  virtual bool openSettings() = 0;
};

}  // namespace orvel
