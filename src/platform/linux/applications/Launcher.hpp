#pragma once

#include "base/Guarded.hpp"
#include "platform/linux/OwnedDescriptor.hpp"
#include "platform/linux/applications/StartupNotice.hpp"
#include "platform/linux/x11/ServerTime.hpp"

#include <sys/resource.h>
#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>

namespace orvel {

class MessageBus;

/// Starts programs by their desktop entries, as the desktop itself would: each has a session of its own and nothing of
/// what this program has changed for itself, and lives on when this program ends.
///
/// Threads: any. A launch waits for the file system, the X server and the session bus.
class Launcher {
 public:
  /// Programs get `openFiles` as their limit of open files. Without a session bus it changes the environment of this
  /// program, so that none is started: make it before other threads read that.
  Launcher(const ServerTime& time, const StartupNotice& notice, const rlimit& openFiles);

  /// Starts the program of the entry at `path`. No effect when it cannot be started, when the session bus does not
  /// answer, or when it was started a moment ago and has shown no window yet.
  void launch(const std::string& path);

  /// The program of the entry at `path` has shown a window: it does not start any more.
  void hasStarted(const std::string& path);

 private:
  struct Start {
    std::chrono::steady_clock::time_point begun;
    std::shared_ptr<const OwnedDescriptor> process;  // null until it is there; no number when none is known
  };

  using Starts = std::unordered_map<std::string, Start>;  // by path

  bool reserve(const std::string& path);
  std::optional<pid_t> spawn(const std::string& path);
  std::string announce(const std::string& name, const std::string& path);
  static bool isOver(const Start& start);

  const ServerTime& time_;
  const StartupNotice& notice_;
  const rlimit openFiles_;
  Guarded<Starts> starts_;
  Guarded<std::shared_ptr<const MessageBus>> bus_;  // kept for what it has yet to deliver
  Guarded<std::uint64_t> announcements_;
};

}  // namespace orvel
