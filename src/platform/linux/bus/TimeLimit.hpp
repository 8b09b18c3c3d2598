#pragma once

#include <algorithm>
#include <chrono>

namespace orvel {

/// How long something may take that waits for others several times. Threads: as any value.
class TimeLimit {
 public:
  explicit TimeLimit(std::chrono::milliseconds limit) : end_(std::chrono::steady_clock::now() + limit) {}

  /// What is left; 0 when it has passed.
  std::chrono::milliseconds left() const {
    const auto rest = std::chrono::floor<std::chrono::milliseconds>(end_ - std::chrono::steady_clock::now());
    return std::max(rest, std::chrono::milliseconds(0));
  }

  bool hasPassed() const { return left() == std::chrono::milliseconds(0); }

 private:
  std::chrono::steady_clock::time_point end_;
};

}  // namespace orvel
