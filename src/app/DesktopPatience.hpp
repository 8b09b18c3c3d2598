#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace orvel {

class Platform;

/// Parts from a desktop that hangs, when that holds up the end of the program for too long. If even that does not help,
/// as when the toolkit waits for another program's answer, it ends the process.
///
/// Threads: any, but destroyed by its owner, which ends it.
class DesktopPatience {
 public:
  /// `platform` must outlive it.
  explicit DesktopPatience(Platform& platform) : platform_(platform) {}
  ~DesktopPatience();
  DesktopPatience(const DesktopPatience&) = delete;
  DesktopPatience& operator=(const DesktopPatience&) = delete;

  /// The program ends from now on, with that exit code. Harmless the second time.
  void begin(int exitCode);

 private:
  void waitForEnd(int exitCode);
  bool endsWithin(std::chrono::seconds limit);

  Platform& platform_;
  std::mutex mutex_;
  std::condition_variable changed_;
  bool hasEnded_ = false;
  std::thread wait_;
};

}  // namespace orvel
