#pragma once

#include "session/SocketMonitor.hpp"

#include <cstddef>
#include <cstdint>

namespace orvel {

/// Asks the kernel for what it knows of a peer.
///
/// Threads: any.
class SystemSocketMonitor final : public SocketMonitor {
 public:
  bool enableKeepAlive(int socket, Seconds idle) override;
  Delivery delivery(int socket, Seconds timeout) override;
  bool hasHungUp(int socket) override;
  Backlog backlog(int socket) override;

  /// What the kernel reports of a connection: bytes unacknowledged, bytes a second that arrived of late (0 when it does
  /// not know yet), and the shortest way there and back (the greatest number of microseconds when it does not know).
  struct Pace {
    std::size_t unacknowledged = 0;
    std::uint64_t bytesPerSecond = 0;
    std::uint32_t shortestTrip = 0;
  };

  static Backlog backlogAt(const Pace& pace);
};

}  // namespace orvel
