#pragma once

namespace orvel {

class Activity;
struct HubState;

/// Keeps the program at full speed exactly while a phone is connected. Threads: the main thread.
class AppNapGuard {
 public:
  /// `activity` must outlive it.
  explicit AppNapGuard(Activity& activity) : activity_(activity) {}
  ~AppNapGuard();
  AppNapGuard(const AppNapGuard&) = delete;
  AppNapGuard& operator=(const AppNapGuard&) = delete;

  /// The state of the hub is to be `next`.
  void follow(const HubState& next);

 private:
  Activity& activity_;
  bool isAwake_ = false;
};

}  // namespace orvel
