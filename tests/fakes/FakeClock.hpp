#pragma once

#include "base/Clock.hpp"
#include "base/Executor.hpp"

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace orvel {

/// Time that stands still until a test moves it. All of its queues run on the test's thread.
class FakeClock final : public Clock {
 public:
  explicit FakeClock(Seconds start = Seconds(1000)) : now_(start) {}

  Seconds now() const override { return now_; }

  void sleep(Seconds duration) override {
    sleeps.push_back(duration);
    now_ += duration;
  }

  /// Lets time pass and runs what falls due, in order of its moment.
  void advance(Seconds duration) {
    const Seconds end = now_ + duration;
    while (!tasks_.empty() && tasks_.begin()->first <= end) {
      now_ = std::max(now_, tasks_.begin()->first);
      const Task task = std::move(tasks_.extract(tasks_.begin()).mapped());
      task();
    }
    now_ = end;
  }

  /// Runs all that is due now, and what that posts.
  void runDue() { advance(Seconds(0)); }

  void schedule(Seconds delay, Task task) { tasks_.emplace(now_ + delay, std::move(task)); }

  std::size_t pendingTasks() const { return tasks_.size(); }

  std::vector<Seconds> sleeps;

 private:
  Seconds now_;
  std::multimap<Seconds, Task> tasks_;
};

/// A queue whose tasks run when its clock is moved.
class FakeExecutor final : public Executor {
 public:
  explicit FakeExecutor(FakeClock& clock) : clock_(clock) {}

  void post(Task task) override { clock_.schedule(Seconds(0), std::move(task)); }
  void postAfter(Seconds delay, Task task) override { clock_.schedule(delay, std::move(task)); }

 private:
  FakeClock& clock_;
};

class FakeQueueFactory final : public QueueFactory {
 public:
  explicit FakeQueueFactory(FakeClock& clock) : clock_(clock) {}

  std::unique_ptr<Executor> makeSerialQueue() override { return std::make_unique<FakeExecutor>(clock_); }

 private:
  FakeClock& clock_;
};

}  // namespace orvel
