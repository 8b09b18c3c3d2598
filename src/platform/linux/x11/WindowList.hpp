#pragma once

#include "platform/linux/applications/DesktopWindows.hpp"
#include "platform/linux/x11/X11Properties.hpp"

#include <sys/types.h>

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace orvel {

/// The windows that the window manager looks after, asked for in a few round trips however many they are.
///
/// Threads: any; each operation waits for the server.
class WindowList {
 public:
  WindowList(const X11Connection& connection, const X11Atoms& atoms);

  /// In the window manager's own order. Empty without a window manager.
  std::vector<ManagedWindow> read() const;

  /// The same windows by their numbers, the lowest of the stack first.
  std::vector<xcb_window_t> stacking() const;

  /// Whether its program lets itself be asked to close the window. Window managers kill those that do not.
  bool canBeAskedToClose(xcb_window_t window) const;

  /// The workspace that a window is on, or nothing when it is on all of them.
  std::optional<std::uint32_t> desktopOf(xcb_window_t window) const;

  /// The workspace that is shown.
  std::optional<std::uint32_t> currentDesktop() const;

 private:
  struct Asked;

  Asked askAbout(xcb_window_t window) const;
  ManagedWindow collect(const Asked& asked) const;
  bool isApplicationWindow(const std::vector<xcb_atom_t>& types) const;
  pid_t processOf(const Asked& asked) const;
  std::optional<std::uint32_t> number(xcb_window_t window, xcb_atom_t name) const;

  const X11Connection& connection_;
  const X11Atoms& atoms_;
  const bool canNameClients_;  // knows their processes
};

/// What one may ask of the window manager in the user's name. It decides itself what it does.
///
/// Threads: any. Nothing is sent before `flush`.
class WindowCommands {
 public:
  WindowCommands(const X11Connection& connection, const X11Atoms& atoms) : connection_(connection), atoms_(atoms) {}

  /// Shows a window, whether minimised or not, and gives it the keyboard.
  void activate(xcb_window_t window, xcb_timestamp_t time) const;

  /// Puts a window above the others.
  void raise(xcb_window_t window) const;

  /// Has the program of a window asked to close it; one that cannot be asked is killed by the window manager.
  void close(xcb_window_t window, xcb_timestamp_t time) const;

  /// Shows another workspace.
  void showDesktop(std::uint32_t desktop, xcb_timestamp_t time) const;

  void flush() const;

 private:
  using Words = std::array<std::uint32_t, 5>;

  void send(xcb_window_t window, xcb_atom_t type, const Words& words) const;

  const X11Connection& connection_;
  const X11Atoms& atoms_;
};

}  // namespace orvel
