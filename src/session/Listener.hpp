#pragma once

#include "base/Clock.hpp"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <system_error>

namespace orvel {

class Transport;

struct ListenerOptions {
  std::uint16_t port = 0;
  Seconds keepAliveIdle{0};            ///< Silence after which a connection is probed.
  std::size_t maximumMessageSize = 0;  ///< Bytes; a larger message ends its connection.
};

/// Waits for phones on one port, by IPv4 and IPv6. Destroying it cancels it.
class Listener {
 public:
  enum class State { ready, failed, cancelled };

  struct Handlers {
    /// `error` says why for `failed`, and is empty otherwise.
    std::function<void(State, const std::error_code& error)> stateChanged;
    /// A phone has connected; its transport is not started yet.
    std::function<void(std::unique_ptr<Transport>)> connected;
  };

  virtual ~Listener() = default;

  /// Opens the port; the handlers run on the listener's serial queue. Called once. Threads: any.
  virtual void start(Handlers handlers) = 0;

  /// Closes the port and then reports `cancelled`. Harmless the second time. Threads: any.
  virtual void cancel() = 0;
};

/// Makes listeners. The handlers of all of them share one serial queue, and a port is closed before the next
/// listener opens it. Threads: any.
class Network {
 public:
  virtual ~Network() = default;

  virtual std::unique_ptr<Listener> makeListener(const ListenerOptions& options) = 0;
};

}  // namespace orvel
