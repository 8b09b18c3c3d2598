#pragma once

#include <chrono>

namespace orvel {

using Milliseconds = std::chrono::milliseconds;

/// How long a desktop test waits for what must happen; only a test that fails waits that long.
inline constexpr Milliseconds timeout{10'000};

/// How long it waits for what must not happen.
inline constexpr Milliseconds lull{100};

/// A moment to wait for.
class Deadline {
 public:
  explicit Deadline(Milliseconds limit) : end_(std::chrono::steady_clock::now() + limit) {}

  /// What is left, rounded up; 0 when it has passed.
  Milliseconds left() const {
    const auto rest = std::chrono::ceil<Milliseconds>(end_ - std::chrono::steady_clock::now());
    return rest > Milliseconds(0) ? rest : Milliseconds(0);
  }

 private:
  std::chrono::steady_clock::time_point end_;
};

}  // namespace orvel
