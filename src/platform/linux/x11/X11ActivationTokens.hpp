#pragma once

#include "base/Guarded.hpp"
#include "platform/linux/applications/DesktopWindows.hpp"
#include "platform/linux/x11/X11Extensions.hpp"
#include "platform/linux/x11/X11Properties.hpp"

#include <cstdint>
#include <string>

namespace orvel {

class X11Connection;

/// Announces to the desktop by startup notification that a program is starting, so that it shows this and lets the
/// program to the front. Threads: any.
class StartupNotice {
 public:
  StartupNotice(const X11Connection& connection, const X11Atoms& atoms) : connection_(connection), atoms_(atoms) {}

  /// A program of that name starts with that token; it says itself when it has started.
  void begin(const std::string& token, const std::string& name, const std::string& entryPath) const;

  /// The start with that token is over.
  void end(const std::string& token) const;

 private:
  void broadcast(const std::string& text) const;
  int screenNumber() const;

  const X11Connection& connection_;
  const X11Atoms& atoms_;
};

/// Activation tokens with the server's time in them, by which window managers know which window the user wished last.
///
/// Threads: any; `issue` waits for the server.
class X11ActivationTokens final : public ActivationTokens {
 public:
  X11ActivationTokens(const X11Connection& connection, const X11Atoms& atoms, const ServerTime& time)
      : time_(time), notice_(connection, atoms) {}

  /// Empty when the server does not say its time.
  std::string issue(const std::string& name, const std::string& entryPath) override;
  void revoke(const std::string& token) override { notice_.end(token); }

 private:
  const ServerTime& time_;
  const StartupNotice notice_;
  Guarded<std::uint64_t> issued_;
};

}  // namespace orvel
