#pragma once

#include "base/Clock.hpp"
#include "base/Guarded.hpp"

#include <cstdint>
#include <optional>

namespace orvel {

/// Declares to the system that somebody uses this Mac, as events that a program posts do not: it wakes a display that
/// sleeps, and puts off its sleep.
///
/// Threads: any.
class UserActivity {
 public:
  explicit UserActivity(const Clock& clock) : clock_(clock) {}

  /// Called for each input event. The system, which is another process, is asked at most every five seconds; a failure
  /// is tried again after as long.
  void declare();

 private:
  struct State {
    std::optional<Seconds> declaredAt;
    std::uint32_t assertion = 0;  ///< What the system knows the activity by; 0 for none yet.
  };

  /// The assertion to renew, if it is time to.
  std::optional<std::uint32_t> takeDue();

  const Clock& clock_;
  Guarded<State> state_;
};

}  // namespace orvel
