#pragma once

#include <sys/types.h>

#include <vector>

namespace orvel {

/// All processes that a process has started, and those that these have, as far as they still belong to it.
std::vector<pid_t> descendantsOf(pid_t process);

}  // namespace orvel
