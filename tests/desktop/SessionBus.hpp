#pragma once

#include "desktop/ChildProcess.hpp"
#include "desktop/VirtualDesktop.hpp"

#include <filesystem>
#include <optional>
#include <string>

namespace orvel {

/// The message bus of a login on a virtual desktop, which starts services by itself, as that of accessibility. Desktop
/// portals are missing: they start slowly, and programs do without.
///
/// Threads: one at a time; the thread that made it must live as long as the bus.
class SessionBus {
 public:
  /// Starts it. Throws when there is no bus.
  explicit SessionBus(const VirtualDesktop& desktop) : SessionBus(desktop.home(), desktop.environment()) {}

  /// The same on another kind of desktop, with a home in which there is a folder `run`.
  SessionBus(const std::filesystem::path& home, ChildProcess::Environment environment);

  ~SessionBus();
  SessionBus(const SessionBus&) = delete;
  SessionBus& operator=(const SessionBus&) = delete;

  const std::string& address() const { return address_; }

  /// What a program needs to be on this desktop and on this bus.
  const ChildProcess::Environment& environment() const { return environment_; }

  /// Stops the bus and the services on it. `start` starts it again, at the same address.
  void stop();
  void start();

  /// Signals the bus alone, to stop it or to let it go on.
  void signal(int number) { daemon_->signal(number); }

  /// Asks programs that start from now on to report their user interfaces, as a screen reader does. False when that
  /// cannot be.
  bool switchOnAccessibility() const;

  /// Waits until programs are asked to report their user interfaces. False when that does not come in time.
  bool waitForAccessibility() const;

 private:
  const std::string address_;
  ChildProcess::Environment environment_;
  std::optional<ChildProcess> daemon_;
};

}  // namespace orvel
