#pragma once

#include "base/Clock.hpp"

#include <cstdint>
#include <string>

namespace orvel {

/// The desktop's foreground, into which a user's wish brings a window of ours. Threads: the main thread.
class Foreground {
 public:
  virtual ~Foreground() = default;

  /// Makes this program one that has no entry of its own where the desktop lists what runs: its icon is its only place.
  /// Called before there is a window. Without effect where the desktop lists windows and no programs.
  virtual void becomeAccessory() = 0;

  /// Keeps a window of the toolkit, which was not shown yet, out of the desktop's list of running programs.
  virtual void keepOutOfList(std::uintptr_t window) = 0;

  /// Gives a window of the toolkit, which is shown, the keyboard. `token` is the desktop's proof that the user wished
  /// it; empty when the wish reached us directly, by a click on our icon.
  virtual void bring(std::uintptr_t window, const std::string& token) = 0;

  /// How long after `bring` the desktop may still take the keyboard back by itself and give it again. Zero where it
  /// gives the keyboard for good.
  virtual Seconds settlingTime() const = 0;

  /// Tells the desktop that the start which it had given `token` to is over, though no window came of it.
  virtual void finishStart(const std::string& token) = 0;
};

}  // namespace orvel
