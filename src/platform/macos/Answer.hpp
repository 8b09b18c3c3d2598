#pragma once

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

namespace orvel {

/// Ends every wait for the answers that share it, now and from now on. Threads: any.
class Cancellation {
 public:
  /// Called at any time, and more than once.
  void cancel() {
    {
      const std::lock_guard lock(mutex_);
      isCancelled_ = true;
    }
    changed_.notify_all();
  }

 private:
  template <class Value>
  friend class Answer;

  std::mutex mutex_;
  std::condition_variable changed_;
  bool isCancelled_ = false;
};

/// One answer of the system's, which comes on a thread of its own: at once, late or never. It is shared by
/// the waiter and the completion handler, so that one that comes late does no harm.
///
/// Threads: any.
template <class Value>
class Answer {
 public:
  explicit Answer(std::shared_ptr<Cancellation> cancellation) : cancellation_(std::move(cancellation)) {}

  /// Called once.
  void give(Value value) {
    {
      const std::lock_guard lock(cancellation_->mutex_);
      value_ = std::move(value);
    }
    cancellation_->changed_.notify_all();
  }

  /// Waits for the answer. Nothing when the wait was cancelled before it came.
  std::optional<Value> await() {
    std::unique_lock lock(cancellation_->mutex_);
    cancellation_->changed_.wait(lock, [this] { return isDone(); });
    return std::exchange(value_, std::nullopt);
  }

  /// The same, but nothing also when it has not come within `timeout`.
  std::optional<Value> await(std::chrono::milliseconds timeout) {
    std::unique_lock lock(cancellation_->mutex_);
    cancellation_->changed_.wait_for(lock, timeout, [this] { return isDone(); });
    return std::exchange(value_, std::nullopt);
  }

 private:
  bool isDone() const { return value_.has_value() || cancellation_->isCancelled_; }

  const std::shared_ptr<Cancellation> cancellation_;
  std::optional<Value> value_;
};

}  // namespace orvel
