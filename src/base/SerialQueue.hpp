#pragma once

#include "base/Executor.hpp"

#include <memory>
#include <string>

namespace orvel {

class WorkerThreads;

/// Runs tasks in the order of posting, never two at once, on a thread that lives only while there is work.
///
/// Threads: any. A queue may be destroyed while it has work, also by one of its own tasks; what was posted still runs.
class SerialQueue final : public Executor {
 public:
  explicit SerialQueue(WorkerThreads& threads);
  ~SerialQueue() override;
  SerialQueue(const SerialQueue&) = delete;
  SerialQueue& operator=(const SerialQueue&) = delete;

  void post(Task task) override;
  void postAfter(Seconds delay, Task task) override;

 private:
  struct State;
  static void drain(State& state);

  std::shared_ptr<State> state_;
};

}  // namespace orvel
