#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace orvel::bench {

/// A server that mirrors a display with our own capture and images to whoever asks, without a proof, but sends plainly:
/// a frame counts as sent when the system has accepted it.
///
/// Threads: one at a time.
class PlainMirrorServer {
 public:
  /// Listens on the port. Throws when there is no such display.
  PlainMirrorServer(const std::string& display, std::uint16_t port);
  ~PlainMirrorServer();
  PlainMirrorServer(const PlainMirrorServer&) = delete;
  PlainMirrorServer& operator=(const PlainMirrorServer&) = delete;

 private:
  class Server;

  const std::unique_ptr<Server> server_;
};

}  // namespace orvel::bench
