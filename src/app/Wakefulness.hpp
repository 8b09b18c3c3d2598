#pragma once

namespace orvel {

class Activity;
struct HubState;

/// Keeps the program at full speed exactly while a phone is connected. Threads: the main thread.
class Wakefulness {
 public:
  /// `activity` must outlive it.
  explicit Wakefulness(Activity& activity) : activity_(activity) {}
  ~Wakefulness();
  Wakefulness(const Wakefulness&) = delete;
  Wakefulness& operator=(const Wakefulness&) = delete;

  /// The state of the hub is to be `next`.
  void follow(const HubState& next);

 private:
  Activity& activity_;
  bool isAwake_ = false;
};

}  // namespace orvel
