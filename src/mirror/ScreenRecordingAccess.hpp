#pragma once

namespace orvel {

/// The desktop's answer to "may this program capture the screen?". Threads: any.
class ScreenRecordingAccess {
 public:
  virtual ~ScreenRecordingAccess() = default;

  /// Whether it may at this moment. Does not block and does not ask the user.
  virtual bool isGranted() = 0;

  /// Has the desktop ask the user. False where the desktop has no such question.
  virtual bool request() = 0;
};

}  // namespace orvel
