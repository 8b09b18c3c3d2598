#pragma once

#include <string>

namespace orvel {

/// The desktop's answer to "may this program capture the screen?". Threads: any.
class ScreenRecordingAccess {
 public:
  /// Why it may not, and what to do about it, in words for whoever holds the phone.
  struct Denial {
    std::string onRequest;  ///< When a phone asks for the screen.
    std::string onStart;    ///< When the permission goes before the capture has started.
  };

  virtual ~ScreenRecordingAccess() = default;

  /// Whether it may at this moment. Does not block and does not ask the user.
  virtual bool isGranted() = 0;

  /// The reasons that a phone gets while it may not.
  virtual Denial denial() const = 0;

  /// Has the desktop ask the user, where it has such a question.
  virtual void request() = 0;
};

}  // namespace orvel
