#pragma once

#include "session/Network.hpp"

#include <memory>

namespace orvel {

class SocketMonitor;

/// The thread on which all connections live: the listener and every session have their serial queue on it.
///
/// One thread, because at the rates of input frames a second one costs more in wake-ups than it takes over. Nothing
/// that runs on it may block.
///
/// Threads: any; `finish` is for the owner.
class NetworkThread final : public Network {
 public:
  /// `monitor` must outlive it.
  explicit NetworkThread(SocketMonitor& monitor);
  ~NetworkThread() override;
  NetworkThread(const NetworkThread&) = delete;
  NetworkThread& operator=(const NetworkThread&) = delete;

  std::unique_ptr<Listener> makeListener(const ListenerOptions& options) override;

  /// Returns once all connections have ended, which whoever owns them must have asked for, and the thread has gone.
  /// Connections that have not ended within two seconds are abandoned.
  void finish();

 private:
  struct Runner;

  SocketMonitor& monitor_;
  std::unique_ptr<Runner> runner_;
};

}  // namespace orvel
