#pragma once

#include "platform/linux/applications/DesktopWindows.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orvel {

class DesktopEntries;

/// A program that has windows on the desktop.
struct WindowedProgram {
  std::uint64_t instance = 0;           ///< Its process, or its window where the process is unknown.
  std::string identifier;               ///< That of its desktop entry, or else the class of its windows.
  std::optional<std::string> name;      ///< In the user's language.
  std::optional<std::string> location;  ///< The path of its desktop entry.
  bool isRegular = false;               ///< Has a window of its own in the task bar.
  std::vector<WindowID> windows;        ///< Its application windows, in the desktop's order. Never empty.
};

/// The programs whose windows the desktop manages. A process that shows windows of several programs, as an
/// office suite does, is several.
///
/// Threads: any; `read` waits for the desktop and for the file system.
class ProgramList {
 public:
  ProgramList(DesktopWindows& windows, DesktopEntries& entries) : windows_(windows), entries_(entries) {}

  /// In the desktop's order of their first windows. Nothing where it does not report windows.
  std::optional<std::vector<WindowedProgram>> read() const;

 private:
  DesktopWindows& windows_;
  DesktopEntries& entries_;
};

}  // namespace orvel
