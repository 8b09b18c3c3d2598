#pragma once

#include <string>

namespace orvel {

/// Work of this program that somebody waits for: some systems let a program that shows no window run slowly, to save
/// power, unless they know of one. Threads: the main thread.
class Activity {
 public:
  virtual ~Activity() = default;

  /// The program runs at full speed until `end`. `reason` is for who looks into what the system does. False where the
  /// system slows no program down, or does not listen.
  virtual bool begin(const std::string& reason) = 0;

  /// Harmless when none has begun.
  virtual void end() = 0;
};

}  // namespace orvel
