#pragma once

#include "session/Network.hpp"
#include "session/NetworkThread.hpp"
#include "session/SocketMonitor.hpp"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace orvel {

struct ReceivedMessage {
  MessageType type = MessageType::text;
  std::string payload;

  friend bool operator==(const ReceivedMessage&, const ReceivedMessage&) = default;
};

/// What one connection has been through.
struct ConnectionRecord {
  std::vector<Transport::State> states;
  std::vector<ReceivedMessage> messages;
  std::size_t sendsDone = 0;
  std::size_t framesTaken = 0;
  bool hungUp = false;           ///< It was notified of that while it read nothing.
  bool failedToReceive = false;  ///< Got the end in place of a message.

  bool has(Transport::State state) const;

  /// Whether the connection has ended for whoever uses its transport.
  bool ended() const;
};

/// The real listener on a free port of this computer. It takes every connection, reads all that comes, and lets go of
/// a connection when it ends, as a host does.
///
/// Threads: any.
class LoopbackServer {
 public:
  static constexpr std::size_t largestMessage = 8388608;

  LoopbackServer();
  ~LoopbackServer();
  LoopbackServer(const LoopbackServer&) = delete;
  LoopbackServer& operator=(const LoopbackServer&) = delete;

  /// The port that it listens on; 0 when none could be opened.
  std::uint16_t port() const { return port_; }

  /// The record of the `index`th connection, in the order of connecting; an empty one when there is none yet.
  ConnectionRecord connection(std::size_t index) const;

  /// Waits until the record of the `index`th connection is as `isAsExpected` wants it; false when that does not happen.
  bool waitFor(std::size_t index, const std::function<bool(const ConnectionRecord&)>& isAsExpected,
               std::chrono::milliseconds limit = std::chrono::seconds(5)) const;

  void send(std::size_t index, std::string text);
  void sendFrame(std::size_t index, std::uint8_t marker, const std::string& image);
  void dropFrames(std::size_t index);

  /// Asks for no more of the messages, or for the next again.
  void pause(std::size_t index, bool paused);
  void cancel(std::size_t index);

  /// What is known of all peers from now on.
  void setHungUp(bool hungUp) { monitor_.hungUpNow = hungUp; }

  /// What has become of what was sent to any peer, from now on.
  void setDelivery(Delivery delivery) { monitor_.deliveryNow = delivery; }

  /// How long the network takes from now on for what was sent before.
  void setBacklog(Seconds backlog) { monitor_.backlogNow = backlog; }

 private:
  class Peer;
  struct Monitor final : SocketMonitor {
    bool enableKeepAlive(int, Seconds) override { return true; }
    Delivery delivery(int, Seconds) override { return deliveryNow; }
    bool hasHungUp(int socket) override { return socket < 0 || hungUpNow; }
    Backlog backlog(int) override { return {.bytes = 0, .time = backlogNow}; }

    std::atomic<Seconds> backlogNow = Seconds(0);
    std::atomic<bool> hungUpNow = false;
    std::atomic<Delivery> deliveryNow = Delivery::done;
  };

  bool listen(std::uint16_t port);
  void take(std::unique_ptr<Transport> transport);
  void note(std::size_t index, const std::function<void(ConnectionRecord&)>& change);
  void letGo(std::size_t index);
  std::shared_ptr<Peer> peer(std::size_t index) const;

  mutable std::mutex mutex_;
  mutable std::condition_variable changed_;
  std::vector<ConnectionRecord> records_;
  std::vector<std::shared_ptr<Peer>> peers_;  // as many; null once it has ended
  std::uint16_t port_ = 0;
  Monitor monitor_;
  NetworkThread network_{monitor_};
  std::unique_ptr<Listener> listener_;
};

}  // namespace orvel
