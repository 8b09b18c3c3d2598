#pragma once

#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

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

/// One answer of the system's, which comes on a thread of its own: at once, late or never. It is shared by who waits
/// and who answers, so that an answer may find that nobody waits any more.
///
/// Threads: any.
template <class Value>
class Answer {
 public:
  explicit Answer(std::shared_ptr<Patience> patience) : patience_(std::move(patience)) {}

  /// Called once.
  void give(Value value) {
    {
      const std::lock_guard lock(patience_->mutex_);
      value_ = std::move(value);
    }
    patience_->changed_.notify_all();
  }

  /// Waits for the answer. Nothing when patience ended before it came.
  std::optional<Value> await() {
    std::unique_lock lock(patience_->mutex_);
    patience_->changed_.wait(lock, [this] { return isOver(); });
    return std::exchange(value_, std::nullopt);
  }

  /// The same, but at most for so long.
  std::optional<Value> await(std::chrono::milliseconds longest) {
    std::unique_lock lock(patience_->mutex_);
    patience_->changed_.wait_for(lock, longest, [this] { return isOver(); });
    return std::exchange(value_, std::nullopt);
  }

 private:
  bool isOver() const { return value_.has_value() || patience_->hasEnded_; }

  const std::shared_ptr<Patience> patience_;
  std::optional<Value> value_;
};

}  // namespace orvel
