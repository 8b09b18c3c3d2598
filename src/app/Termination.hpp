#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <semaphore>
#include <thread>

namespace orvel {

class Platform;

/// Hears the system's polite requests to end: Ctrl-C, SIGTERM, and a terminal that closes.
///
/// Threads: made and destroyed on one; `handler` runs on a thread of this object, which sleeps until a signal comes.
class TerminationSignals {
 public:
  explicit TerminationSignals(std::function<void()> handler);
  ~TerminationSignals();
  TerminationSignals(const TerminationSignals&) = delete;
  TerminationSignals& operator=(const TerminationSignals&) = delete;

 private:
  struct Watch;

  std::unique_ptr<Watch> watch_;
};

/// Gives up a desktop that hangs, when that holds up the end of the program for too long. If even that does not help,
/// as when the toolkit waits for another program's answer, it ends the process.
///
/// Threads: any, but destroyed by its owner, when nobody calls it any more. Destroying it says that the program has
/// ended.
class ShutdownWatchdog {
 public:
  /// `platform` must outlive it.
  explicit ShutdownWatchdog(Platform& platform) : platform_(platform) {}
  ~ShutdownWatchdog();
  ShutdownWatchdog(const ShutdownWatchdog&) = delete;
  ShutdownWatchdog& operator=(const ShutdownWatchdog&) = delete;

  /// The program ends from now on, with that exit code. Harmless the second time.
  void begin(int exitCode);

 private:
  void waitForEnd(int exitCode);

  Platform& platform_;
  std::atomic_flag begun_;
  std::binary_semaphore ended_{0};
  std::thread thread_;
};

}  // namespace orvel
