#pragma once

#include "base/Clock.hpp"

namespace orvel {

/// The TCP options that each system spells in its own way. Threads: any.
class SocketTuner {
 public:
  virtual ~SocketTuner() = default;

  /// Has a silent peer probed after `idle`, and the connection fail when it stays silent: within 30 s for an `idle` of
  /// 10 s, also when data to it waits unacknowledged. False when the system refuses.
  virtual bool enableKeepAlive(int socket, Seconds idle) = 0;
};

}  // namespace orvel
