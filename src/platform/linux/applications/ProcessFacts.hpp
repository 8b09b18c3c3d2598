#pragma once

#include <sys/types.h>

#include <string>

namespace orvel {

/// What the system knows of a running process. Empty where it has ended or belongs to another user.
///
/// Threads: as any value.
struct ProcessFacts {
  std::string program = {};        ///< The name of its executable file, without folders.
  std::string launchedEntry = {};  ///< The path of the desktop entry that it was launched by.

  static ProcessFacts of(pid_t process);
};

/// Whether processes run that were started by `process`, which was launched by a desktop entry in a session of its own
/// and may have ended: they are in that session, or have its number in their environment. Those that a service of the
/// system has started for it cannot be known. Threads: any; reads what the system says of each process.
bool hasSuccessors(pid_t process);

}  // namespace orvel
