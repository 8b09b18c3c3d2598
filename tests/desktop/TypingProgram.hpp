#pragma once

#include "desktop/ChildProcess.hpp"
#include "desktop/VirtualDesktop.hpp"

#include <filesystem>
#include <memory>
#include <string>

namespace orvel {

/// Another program that has the keyboard, and reports what was typed into it.
///
/// Threads: one at a time; the thread that made it must live as long as the program.
class TypingProgram {
 public:
  virtual ~TypingProgram() = default;

  /// Starts a terminal ("xterm"), or a window with an entry by that toolkit ("gtk3", "gtk4", "qt6"), and waits until it
  /// is ready, but for the keyboard, which the window manager gives it. Throws when it does not become so.
  static std::unique_ptr<TypingProgram> start(const VirtualDesktop& desktop, const std::string& name);

  /// All that has been typed into it by now, in UTF-8.
  virtual std::string content() = 0;

  /// Signals it, to stop it or to let it go on.
  virtual void signal(int number) = 0;

  /// Waits until the content is `expected`; returns it earlier if that cannot come any more, and in any case after a
  /// while.
  std::string contentExpecting(const std::string& expected);
};

}  // namespace orvel
