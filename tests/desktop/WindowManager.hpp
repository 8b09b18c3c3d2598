#pragma once

#include "desktop/ChildProcess.hpp"
#include "desktop/VirtualDesktop.hpp"

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orvel {

/// Openbox with four workspaces, and what it says of its windows.
///
/// Threads: one at a time; the thread that made it must live as long as it.
class WindowManager {
 public:
  /// Starts it and waits until it looks after windows. Throws when it does not.
  explicit WindowManager(const VirtualDesktop& desktop);
  ~WindowManager();
  WindowManager(const WindowManager&) = delete;
  WindowManager& operator=(const WindowManager&) = delete;

  /// The windows of that class, in the order in which they came.
  std::vector<xcb_window_t> windowsOf(const std::string& className) const;

  /// All windows, the lowest first.
  std::vector<xcb_window_t> stacking() const;

  xcb_window_t activeWindow() const;
  std::uint32_t currentWorkspace() const;
  bool isMinimised(xcb_window_t window) const;

  /// Whether lists of what runs show the window.
  bool isInTaskbar(xcb_window_t window) const;

  void minimise(xcb_window_t window) const;

  /// Asks the program to close its window, as the button in its frame does.
  void close(xcb_window_t window) const;
  void moveToWorkspace(xcb_window_t window, std::uint32_t workspace) const;

  void kill();

 private:
  xcb_atom_t atom(const std::string& name) const;
  std::vector<std::uint32_t> numbers(xcb_window_t window, const std::string& property) const;
  std::string text(xcb_window_t window, const std::string& property) const;
  void send(xcb_window_t window, const std::string& message, std::uint32_t word) const;

  ChildProcess openbox_;
  xcb_connection_t* const connection_;
  const xcb_window_t root_;
};

}  // namespace orvel
