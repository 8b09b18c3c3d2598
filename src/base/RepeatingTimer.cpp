#include "base/RepeatingTimer.hpp"

#include <algorithm>
#include <atomic>
#include <utility>

namespace orvel {

struct RepeatingTimer::Schedule {
  Schedule(Executor& queue, const Clock& time, Seconds delay, Seconds interval, Task task)
      : executor(queue), clock(time), period(interval), tick(std::move(task)), next(time.now() + delay) {}

  Executor& executor;
  const Clock& clock;
  const Seconds period;
  const Task tick;
  Seconds next;
  std::atomic<bool> cancelled = false;
};

RepeatingTimer::RepeatingTimer(Executor& executor, const Clock& clock, Seconds delay, Seconds period, Task tick)
    : schedule_(std::make_shared<Schedule>(executor, clock, delay, period, std::move(tick))) {
  arm(schedule_, delay);
}

RepeatingTimer::~RepeatingTimer() {
  schedule_->cancelled = true;
}

void RepeatingTimer::arm(const std::shared_ptr<Schedule>& schedule, Seconds delay) {
  schedule->executor.postAfter(delay, [schedule] {
    if (schedule->cancelled) return;
    schedule->tick();
    if (schedule->cancelled) return;
    const Seconds now = schedule->clock.now();
    schedule->next = std::max(schedule->next + schedule->period, now);
    arm(schedule, schedule->next - now);
  });
}

}  // namespace orvel
