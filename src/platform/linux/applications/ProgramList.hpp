#pragma once

#include "platform/linux/x11/WindowList.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orvel {

class DesktopEntries;

/// A program that has windows on the desktop.
struct WindowedProgram {
  std::uint64_t instance = 0;           ///< Its process, or its window where nobody knows the process.
  std::string identifier;               ///< That of its desktop entry, or else the class of its windows.
  std::optional<std::string> name;      ///< In the user's language.
  std::optional<std::string> location;  ///< The path of its desktop entry.
  bool isRegular = false;               ///< Has a window of its own that people switch to.
  std::vector<xcb_window_t> windows;    ///< Those for people, in the window manager's order. Never empty.
};

/// The programs whose windows the window manager looks after. A process that shows windows of several programs, as an
/// office suite does, is several.
///
/// Threads: any; `read` waits for the server and for the file system.
class ProgramList {
 public:
  ProgramList(const WindowList& windows, DesktopEntries& entries) : windows_(windows), entries_(entries) {}

  /// In the window manager's order of their first windows.
  std::vector<WindowedProgram> read() const;

 private:
  const WindowList& windows_;
  DesktopEntries& entries_;
};

}  // namespace orvel
