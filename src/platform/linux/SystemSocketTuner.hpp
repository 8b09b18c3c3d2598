#pragma once

#include "session/SocketTuner.hpp"

namespace orvel {

/// Asks the kernel for what it knows of a peer.
///
/// Threads: any.
class SystemSocketTuner final : public SocketTuner {
 public:
  bool enableKeepAlive(int socket, Seconds idle) override;
  Delivery delivery(int socket, Seconds patience) override;
  Backlog backlog(int socket) override;
};

}  // namespace orvel
