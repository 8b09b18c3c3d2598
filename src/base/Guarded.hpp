#pragma once

#include <mutex>
#include <utility>

namespace orvel {

/// A value that can be reached only while its lock is held.
template <class Value>
class Guarded {
 public:
  Guarded() = default;
  explicit Guarded(Value value) : value_(std::move(value)) {}

  /// Calls `use` with the value while the lock is held and returns what it returns. `use` must neither block nor
  /// call out. Threads: any.
  template <class Use>
  auto withLock(Use&& use) {
    const std::lock_guard lock(mutex_);
    return std::forward<Use>(use)(value_);
  }

  /// The same for reading. Threads: any.
  template <class Use>
  auto withLock(Use&& use) const {
    const std::lock_guard lock(mutex_);
    return std::forward<Use>(use)(value_);
  }

 private:
  mutable std::mutex mutex_;
  Value value_{};
};

}  // namespace orvel
