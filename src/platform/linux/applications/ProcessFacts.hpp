#pragma once

#include <sys/types.h>

#include <string>

namespace orvel {

/// What the system knows of a running process. Empty where it has ended or belongs to somebody else.
///
/// Threads: as any value.
struct ProcessFacts {
  std::string program = {};        ///< The name of its executable file, without folders.
  std::string launchedEntry = {};  ///< The path of the desktop entry that it was launched by.

  static ProcessFacts of(pid_t process);
};

}  // namespace orvel
