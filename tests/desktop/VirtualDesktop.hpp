#pragma once

#include "desktop/ChildProcess.hpp"
#include "desktop/TemporaryFolder.hpp"

#include <optional>
#include <string>
#include <vector>

namespace orvel {

/// A private X server without a monitor, 1280 by 800, and a private home. Keys that are held down are not repeated by
/// this server, so that a slow test sees the events of a fast one.
///
/// Threads: one at a time; the thread that made it must live as long as the server.
class VirtualDesktop {
 public:
  static constexpr int width = 1280;
  static constexpr int height = 800;

  /// Starts it and waits until it answers. `serverArguments` come on top. Throws when there is no server.
  explicit VirtualDesktop(const std::vector<std::string>& serverArguments = {});

  /// Its name for DISPLAY.
  const std::string& display() const { return display_; }

  const std::filesystem::path& home() const { return home_.path(); }

  /// What a program needs to see this desktop and this home, and no other.
  ChildProcess::Environment environment() const;

  /// The process of the X server.
  pid_t serverPid() const { return server_->pid(); }

  /// Runs a program on this desktop to its end. Its exit code, or nothing when it does not end.
  std::optional<int> run(const std::vector<std::string>& command) const;

  /// Signals the server, to stop it or to let it go on.
  void signalServer(int number) { server_->signal(number); }

  /// Kills the server, as a crash would, and waits until it is gone.
  void killServer();

 private:
  std::string start(const std::vector<std::string>& serverArguments);

  TemporaryFolder home_;
  std::optional<ChildProcess> server_;
  std::string display_;
};

}  // namespace orvel
