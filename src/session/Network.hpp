#pragma once

#include "base/Clock.hpp"
#include "base/Executor.hpp"
#include "base/SharedBytes.hpp"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <system_error>

namespace orvel {

enum class MessageType { text, binary, close };

/// One whole message of a phone. The payload lives until the handler returns.
struct Message {
  MessageType type = MessageType::text;
  std::span<const std::uint8_t> payload;
};

/// One phone's connection. Its handlers run on `queue`, never two at once.
class Transport {
 public:
  enum class State { ready, failed, cancelled };

  struct Handlers {
    /// The connection has become ready, could not become so, or was cancelled.
    std::function<void(State)> stateChanged;
    /// The message that `receive` asked for, or nothing when the connection has ended.
    std::function<void(std::optional<Message>)> received;
    /// All that had arrived has been handed over: the moment to send on what a batch of messages has piled up.
    std::function<void()> drained;
    /// While no message was asked for, the peer has vanished or ended its side: nothing follows what the system still
    /// holds of it. Called once.
    std::function<void()> hungUp;
  };

  virtual ~Transport() = default;

  /// The serial queue of this connection. It outlives the transport.
  virtual Executor& queue() = 0;

  /// Opens the connection; `handlers` hear of it from now on. Called once. Threads: any.
  virtual void start(Handlers handlers) = 0;

  /// Asks for one message. Called on `queue`, again only after the answer.
  virtual void receive() = 0;

  /// Sends one whole text message, once the connection is ready, after all earlier ones, then calls `sent` on `queue`,
  /// also when it failed. Threads: any.
  virtual void send(std::string text, Task sent) = 0;

  /// Sends one binary message that is `marker` and then `image`, without copying it, after all earlier messages and
  /// frames; messages of `send` overtake it for as long as it has not begun. Calls `taken` on `queue` when the network
  /// has taken it and the next would not wait for long, or when the connection has ended. Threads: any.
  virtual void sendFrame(std::uint8_t marker, SharedBytes image, Task taken) = 0;

  /// Forgets the frames that have not begun to be sent; they count as taken. Called on `queue`.
  virtual void dropFrames() = 0;

  /// Closes the connection at once. Harmless when it is closed. Threads: any.
  virtual void cancel() = 0;
};

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
