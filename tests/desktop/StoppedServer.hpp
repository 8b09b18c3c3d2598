#pragma once

#include "desktop/VirtualDesktop.hpp"

#include <csignal>

namespace orvel {

/// The X server hangs for as long as this lives. Threads: one at a time.
class StoppedServer {
 public:
  explicit StoppedServer(VirtualDesktop& desktop) : desktop_(desktop) { desktop_.signalServer(SIGSTOP); }
  ~StoppedServer() { desktop_.signalServer(SIGCONT); }
  StoppedServer(const StoppedServer&) = delete;
  StoppedServer& operator=(const StoppedServer&) = delete;

 private:
  VirtualDesktop& desktop_;
};

}  // namespace orvel
