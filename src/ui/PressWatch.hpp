#pragma once

#include <functional>

namespace orvel {

/// Reports presses of pointer buttons, wherever on the desktop they are: not every window takes the keyboard from
/// ours when it is clicked. Threads: the main thread.
class PressWatch {
 public:
  virtual ~PressWatch() = default;

  /// Calls `pressed`, on the main thread, soon after each press until `end`. Where the desktop does not report presses,
  /// it is never called.
  virtual void begin(std::function<void()> pressed) = 0;

  /// May be called by `pressed`.
  virtual void end() = 0;
};

}  // namespace orvel
