#pragma once

#include "base/Clock.hpp"

#include <cstddef>

namespace orvel {

/// What becomes of the data that was sent to a peer.
enum class Delivery {
  done,     ///< The peer has acknowledged all of it.
  pending,  ///< It is on its way, or the peer lives but has no room for it.
  ignored,  ///< It was repeated, and the peer has not been heard of for too long.
};

/// What was sent to a peer and has not arrived as far as is known.
struct Backlog {
  std::size_t bytes = 0;  ///< What the peer has not acknowledged.
  Seconds time{0};  ///< How long it takes, at the pace of the last moments, until all of it has left this computer.
};

/// Watches what becomes of a TCP connection's peer and of the data sent to it, as each system's kernel reports it.
/// Threads: any.
class SocketMonitor {
 public:
  virtual ~SocketMonitor() = default;

  /// Has a silent peer probed after `idle`, and the connection fail when it stays silent: within 30 s for an `idle` of
  /// 10 s, but only while nothing sent waits for an acknowledgement. False when the system refuses.
  virtual bool enableKeepAlive(int socket, Seconds idle) = 0;

  /// What becomes of the data sent; a peer that is silent for longer than `timeout` ignores it. Does not block.
  virtual Delivery delivery(int socket, Seconds timeout) = 0;

  /// Whether the peer has ended its side or reset the connection, however much of what it has sent is unread, or the
  /// socket is closed. Does not block.
  virtual bool hasHungUp(int socket) = 0;

  /// How much of the data sent is still under way. Does not block.
  virtual Backlog backlog(int socket) = 0;
};

}  // namespace orvel
