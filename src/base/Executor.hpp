#pragma once

#include "base/Clock.hpp"

#include <functional>
#include <memory>
#include <string>

namespace orvel {

using Task = std::function<void()>;

/// A place where tasks run one after another: a serial queue, the main thread, a network thread.
class Executor {
 public:
  virtual ~Executor() = default;

  /// Runs `task` after all tasks posted before it. Returns at once. Threads: any.
  virtual void post(Task task) = 0;

  /// Runs `task` once `delay` has passed. Returns at once. Threads: any.
  virtual void postAfter(Seconds delay, Task task) = 0;
};

/// Makes serial queues for those who hand off slow work.
class QueueFactory {
 public:
  virtual ~QueueFactory() = default;

  /// A new, empty serial queue. Tasks that were posted run even when the queue itself is gone. Threads: any.
  virtual std::unique_ptr<Executor> makeSerialQueue() = 0;
};

}  // namespace orvel
