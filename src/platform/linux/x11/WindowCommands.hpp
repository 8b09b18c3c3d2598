#pragma once

#include "platform/linux/x11/X11Atoms.hpp"

#include <array>
#include <cstdint>

namespace orvel {

class X11Connection;

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
