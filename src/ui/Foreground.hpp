#pragma once

#include "base/Clock.hpp"

#include <cstdint>
#include <string>

namespace orvel {

/// A window of the toolkit. Threads: the main thread.
class ToolkitWindow {
 public:
  virtual ~ToolkitWindow() = default;

  /// What the windowing system knows it by, where it has such a thing: the window of X11, the NSView of a Mac.
  virtual std::uintptr_t nativeHandle() const = 0;
};

/// The desktop's foreground, into which a user's wish brings a window of ours. Threads: the main thread.
class Foreground {
 public:
  virtual ~Foreground() = default;

  /// Makes this program one that has no entry of its own where the desktop lists what runs: its icon is its only place.
  /// Called before there is a window. Without effect where the desktop lists windows and no programs.
  virtual void becomeAccessory() = 0;

  /// Keeps a window, which was not shown yet, out of the desktop's list of running programs.
  virtual void keepOutOfList(const ToolkitWindow& window) = 0;

  /// Gives a window, which is shown, the keyboard. The activation token shows the desktop that the user wished it; it
  /// is empty when the wish reached us directly, by a click on our icon.
  virtual void bring(const ToolkitWindow& window, const std::string& activationToken) = 0;

  /// How long after `bring` the desktop may still take the keyboard back by itself and give it again. Zero where it
  /// gives the keyboard for good.
  virtual Seconds settlingTime() const = 0;

  /// The start for which the desktop gave the activation token is over, though no window came of it.
  virtual void finishStart(const std::string& activationToken) = 0;
};

}  // namespace orvel
