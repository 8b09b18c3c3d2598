#pragma once

#include "session/SocketMonitor.hpp"

#include <cstddef>
#include <cstdint>

namespace orvel {

/// Asks the kernel for what it knows of a peer, and leaves it to the kernel to give up one that has vanished: it probes
/// a silent peer also while data waits, and ends the connection when data was repeated in vain for too long.
///
/// Threads: any.
class SystemSocketMonitor final : public SocketMonitor {
 public:
  bool enableKeepAlive(int socket, Seconds idle) override;

  /// Never finds data ignored: it gives the kernel a time limit, which then ends the connection itself.
  Delivery delivery(int socket, Seconds timeout) override;

  bool hasHungUp(int socket) override;
  Backlog backlog(int socket) override;

  /// What the kernel reports of a connection: bytes unacknowledged, bytes that may be under way at a time, and how many
  /// milliseconds the way there and back takes (0 for less than one, and when it does not know).
  struct Pace {
    std::uint32_t unacknowledged = 0;
    std::uint32_t window = 0;
    std::uint32_t trip = 0;
  };

  static Backlog backlogAt(const Pace& pace);
};

}  // namespace orvel
