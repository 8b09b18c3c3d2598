#pragma once

#include "platform/linux/x11/X11Atoms.hpp"

#include <string>

namespace orvel {

class X11Connection;

/// Tells the desktop that a program is starting, so that it shows this and lets the program to the front.
///
/// Threads: any.
class StartupNotice {
 public:
  StartupNotice(const X11Connection& connection, const X11Atoms& atoms) : connection_(connection), atoms_(atoms) {}

  /// A program of that name starts under that number of its own; it says itself when it has started.
  void begin(const std::string& identifier, const std::string& name, const std::string& entryPath) const;

  /// It does not start after all.
  void end(const std::string& identifier) const;

 private:
  void broadcast(const std::string& text) const;
  int screenNumber() const;

  const X11Connection& connection_;
  const X11Atoms& atoms_;
};

}  // namespace orvel
