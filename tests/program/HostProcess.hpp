#pragma once

#include "desktop/ChildProcess.hpp"
#include "desktop/VirtualDesktop.hpp"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace orvel {

/// The program under test, running on a private desktop.
class HostProcess {
 public:
  static constexpr std::uint16_t port = 8787;

  explicit HostProcess(const VirtualDesktop& desktop) : HostProcess(desktop, desktop.environment()) {}

  /// The same, with more around it than a desktop alone has, such as a message bus. Without other options it keeps its
  /// panel to itself.
  HostProcess(const VirtualDesktop& desktop, const ChildProcess::Environment& environment,
              const std::vector<std::string>& options = {"--background"});

  /// The same on another kind of desktop.
  HostProcess(const ChildProcess::Environment& environment, const std::vector<std::string>& options);

  /// Whether phones can connect, in time.
  bool waitUntilListening() { return process_.waitForOutput("Listening on "); }

  /// The pairing code, asked of the program as a person would.
  std::string code() const;

  ChildProcess& process() { return process_; }

  /// What the kernel counts of it.
  struct Footprint {
    std::size_t threads = 0;
    std::size_t descriptors = 0;
    std::size_t privateKilobytes = 0;
    std::int64_t processorTicks = 0;  ///< Hundredths of a second, of all threads.
  };
  Footprint footprint() const;

 private:
  const ChildProcess::Environment homeEnvironment_;
  ChildProcess process_;
};

}  // namespace orvel
