#pragma once

#include <chrono>

namespace orvel {

using Seconds = std::chrono::duration<double>;

/// Time as the rules see it, so that tests can turn it by hand.
class Clock {
 public:
  virtual ~Clock() = default;

  /// Seconds since a fixed moment in the past; never goes back. Threads: any.
  virtual Seconds now() const = 0;

  /// Blocks the calling thread for `duration`. Threads: any.
  virtual void sleep(Seconds duration) = 0;
};

/// The computer's own steady clock. Threads: any.
class SystemClock final : public Clock {
 public:
  Seconds now() const override;
  void sleep(Seconds duration) override;
};

}  // namespace orvel
