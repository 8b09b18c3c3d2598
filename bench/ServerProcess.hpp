#pragma once

#include <sys/types.h>

#include <atomic>
#include <cstdint>
#include <functional>

namespace orvel::bench {

/// What a server reports of itself, in memory that it shares with the benchmark.
struct Tally {
  std::atomic<std::uint16_t> port = 0;  ///< Set once it listens.
  std::atomic<std::int64_t> dx = 0;     ///< The sums of all motion that it was sent.
  std::atomic<std::int64_t> dy = 0;
};

/// A server in a process of its own, so that its processor time is measured apart from that of its phones. Killed with
/// this object, and with the benchmark.
///
/// Threads: one at a time; made before the benchmark has any other thread.
class ServerProcess {
 public:
  /// Starts `serve` in the process, and waits until it listens. Throws when it does not.
  explicit ServerProcess(const std::function<void(Tally&)>& serve);
  ~ServerProcess();
  ServerProcess(const ServerProcess&) = delete;
  ServerProcess& operator=(const ServerProcess&) = delete;

  const Tally& tally() const { return tally_; }

  pid_t pid() const { return pid_; }

 private:
  void waitUntilListening();

  Tally& tally_;
  pid_t pid_ = -1;
};

/// A TCP port of this computer that was free a moment ago.
std::uint16_t freePort();

}  // namespace orvel::bench
