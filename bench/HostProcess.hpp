#pragma once

#include "desktop/ChildProcess.hpp"
#include "desktop/VirtualDesktop.hpp"

#include <chrono>
#include <cstdint>
#include <string>

namespace orvel::bench {

/// The port of the host.
inline constexpr std::uint16_t hostPort = 8787;

/// How to start the real program with an option. It finds no Bonjour daemon to talk to.
ChildProcess::Program hostProgram(ChildProcess::Environment environment, const std::string& option);

/// The real program, running on a private desktop until this object goes, without showing its panel. What goes wrong is
/// thrown.
///
/// Threads: one at a time.
class HostProcess {
 public:
  /// Starts it and waits until its port is open.
  explicit HostProcess(const VirtualDesktop& desktop) : HostProcess(desktop.environment()) {}

  /// The same, with more around it than a desktop alone has, such as a message bus.
  explicit HostProcess(const ChildProcess::Environment& environment);

  /// Asks it to end and waits until it has.
  void stop();

  pid_t pid() const { return program_.pid(); }

  /// From before it was started until its port was open.
  std::chrono::duration<double> startTime() const { return startTime_; }

 private:
  std::chrono::steady_clock::time_point begun_ = std::chrono::steady_clock::now();
  ChildProcess program_;
  std::chrono::duration<double> startTime_{0};
};

/// Runs the real program with an option that has it end by itself, and returns what it said.
std::string runHost(const VirtualDesktop& desktop, const std::string& option);

/// The token with which phones pair with the host on this desktop.
std::string hostToken(const VirtualDesktop& desktop);

}  // namespace orvel::bench
