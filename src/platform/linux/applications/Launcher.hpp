#pragma once

#include "base/Guarded.hpp"

#include <sys/resource.h>

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

namespace orvel {

class ActivationTokens;

/// Starts programs by their desktop entries, as the desktop itself would: each has a session of its own and nothing of
/// what this program has changed for itself, and lives on when this program ends.
///
/// Threads: any. A launch waits for the file system, the desktop and the session bus.
class Launcher {
 public:
  /// Programs get `openFiles` as their limit of open files. Without a session bus it changes the environment of this
  /// program, so that none is started: make it before other threads read that.
  Launcher(ActivationTokens& tokens, const rlimit& openFiles);

  /// Starts the program of the entry at `path`. No effect when it cannot be started, when the session bus does not
  /// answer, or while it still starts: for up to 15 s without a window, as long as its process or one that this has
  /// started lives.
  void launch(const std::string& path);

  /// The program of the entry at `path` has shown a window: it does not start any more.
  void hasStarted(const std::string& path);

 private:
  struct BusStart;
  struct Process;

  /// What came of a launch: a process, or a request to the bus.
  struct Launched {
    std::shared_ptr<const Process> process{};
    std::shared_ptr<const BusStart> bus{};
  };

  struct Start {
    std::chrono::steady_clock::time_point begun;
    Launched launched{};  // empty while it is being launched
  };

  using Starts = std::unordered_map<std::string, Start>;  // by path

  bool reserve(const std::string& path);
  std::optional<Launched> spawn(const std::string& path);
  static bool isOver(const Start& start);

  ActivationTokens& tokens_;
  const rlimit openFiles_;
  Guarded<Starts> starts_;
};

}  // namespace orvel
