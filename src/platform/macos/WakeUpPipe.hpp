#pragma once

namespace orvel {

/// Wakes a thread that polls, by a descriptor that becomes readable. Threads: `wakeUp` any, the rest the one that
/// polls.
class WakeUpPipe {
 public:
  WakeUpPipe();
  ~WakeUpPipe();
  WakeUpPipe(const WakeUpPipe&) = delete;
  WakeUpPipe& operator=(const WakeUpPipe&) = delete;

  /// Does not block, however often it was called.
  void wakeUp() const;

  /// Makes the descriptor unreadable until the next `wakeUp`.
  void clear() const;

  int descriptor() const { return ends_[0]; }

 private:
  int ends_[2] = {-1, -1};
};

}  // namespace orvel
