#pragma once

#include <condition_variable>
#include <mutex>

namespace orvel {

/// How long answers of the system are waited for: as long as it takes, until this ends. Threads: any.
class Patience {
 public:
  /// Nobody waits any more.
  void end() {
    {
      const std::lock_guard lock(mutex_);
      hasEnded_ = true;
    }
    changed_.notify_all();
  }

 private:
  template <class Value>
  friend class Answer;

  std::mutex mutex_;
  std::condition_variable changed_;
  bool hasEnded_ = false;
};

}  // namespace orvel
