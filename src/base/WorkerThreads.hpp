#pragma once

#include "base/Executor.hpp"
#include "base/StopSignal.hpp"

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>

namespace orvel {

/// Owns the threads that serial queues run on. A queue has a thread only while it has work.
///
/// Threads: any, but `finish` is for the owner. No queue that it made is used after it is gone.
class WorkerThreads final : public QueueFactory {
 public:
  WorkerThreads() = default;
  ~WorkerThreads() override;
  WorkerThreads(const WorkerThreads&) = delete;
  WorkerThreads& operator=(const WorkerThreads&) = delete;

  std::unique_ptr<Executor> makeSerialQueue() override;

  /// Lets every task that has begun run to its end, drops the rest, and returns when the last thread has gone.
  /// Queues drop what is posted from then on.
  void finish();

  /// Runs `body` on a thread of its own, or as soon as one is free when there are very many or the system has no more.
  /// Does nothing once `finish` was called.
  void run(Task body);

  /// Says when to end early.
  StopSignal& stopSignal() { return stop_; }

 private:
  bool startThread(const Task& body);
  void work(Task body);
  Task nextOrEnd();

  StopSignal stop_;
  std::mutex mutex_;
  std::condition_variable ended_;
  std::size_t running_ = 0;
  std::deque<Task> waiting_;
};

}  // namespace orvel
