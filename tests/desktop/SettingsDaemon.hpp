#pragma once

#include "desktop/ChildProcess.hpp"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <utility>

namespace orvel {

/// What hands out a desktop's settings by the X server, with its file in `home`.
///
/// Threads: one at a time; the thread that made it must live as long as the daemon.
class SettingsDaemon {
 public:
  SettingsDaemon(const std::filesystem::path& home, ChildProcess::Environment environment, const std::string& content)
      : file_((home / "xsettingsd.conf").string()) {
    write(content);
    process_.emplace(
        ChildProcess::Program{.command = {"xsettingsd", "-c", file_}, .environment = std::move(environment)});
  }

  /// What it hands out from the next `reload` on.
  void write(const std::string& content) const {
    std::ofstream(file_ + ".new") << content;
    std::filesystem::rename(file_ + ".new", file_);
  }

  /// Asks it to read its file anew, which it may miss.
  void reload() { process_->signal(SIGHUP); }

  void end() { process_.reset(); }

 private:
  const std::string file_;
  std::optional<ChildProcess> process_;
};

}  // namespace orvel
