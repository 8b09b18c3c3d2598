#pragma once

#include "platform/linux/OwnedDescriptor.hpp"

#include <chrono>
#include <optional>

namespace orvel {

/// A sleep that ends when a descriptor has something to read, when another thread calls, or in time.
///
/// Threads: `call` any; the rest one.
class WakeUp {
 public:
  using Time = std::chrono::steady_clock::time_point;

  /// What a sleeper minds of the descriptor.
  enum class Minds {
    everything,  ///< That it has something to read, or that its other end has gone.
    end,         ///< Only that its other end has gone.
  };

  explicit WakeUp(int descriptor);

  /// False when the system had no descriptor to give; then it must not be used.
  bool isUsable() const { return calls_.number() >= 0; }

  /// Ends a sleep, or the next one when nobody sleeps. Does not block.
  void call() const;

  /// Sleeps until `end`, or without an end. Returns whether the descriptor woke it.
  bool sleep(Minds minds, std::optional<Time> end) const;

 private:
  const int descriptor_;
  const OwnedDescriptor calls_;
};

}  // namespace orvel
