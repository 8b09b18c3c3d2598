#pragma once

#include "session/Network.hpp"

#include <memory>

namespace orvel {

class NetworkQueue;
class SocketMonitor;

/// Listens on a TCP port, by IPv6 and IPv4 at once where the system has both, and makes a WebSocket transport of each
/// connection. A port on which anybody else listens cannot be opened. Threads: see Listener.
class WebSocketListener final : public Listener {
 public:
  /// `queue` and `monitor` must outlive it and the transports that it makes.
  WebSocketListener(NetworkQueue& queue, SocketMonitor& monitor, const ListenerOptions& options);
  ~WebSocketListener() override;  // NOLINT(bugprone-exception-escape): as where it is defined

  void start(Handlers handlers) override;
  void cancel() override;

 private:
  class Port;

  const std::shared_ptr<Port> port_;
  NetworkQueue& queue_;
};

}  // namespace orvel
