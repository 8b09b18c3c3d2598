#pragma once

#include "base/Executor.hpp"

#include <memory>

namespace orvel {

/// Runs a task again and again until it is destroyed: first after `delay`, then every `period`. Ticks that were missed
/// are not made up for.
///
/// Threads: made and destroyed on any thread, also by its own tick. Destroying it does not wait: a tick that has
/// begun on another thread runs to its end.
class RepeatingTimer {
 public:
  RepeatingTimer(Executor& executor, const Clock& clock, Seconds delay, Seconds period, Task tick);
  ~RepeatingTimer();
  RepeatingTimer(const RepeatingTimer&) = delete;
  RepeatingTimer& operator=(const RepeatingTimer&) = delete;

 private:
  struct Schedule;
  static void arm(const std::shared_ptr<Schedule>& schedule, Seconds delay);

  std::shared_ptr<Schedule> schedule_;
};

}  // namespace orvel
