#pragma once

#include "base/Guarded.hpp"

#include <optional>
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

  /// The program ends from now on, with that exit code. Harmless the second time.
  void begin(int exitCode);

 private:
  Platform& platform_;
  Guarded<std::optional<std::jthread>> wait_;
};

}  // namespace orvel
