#pragma once

#include <sys/resource.h>

/// The limit of open files of this process. Threads: any.
namespace orvel::OpenFiles {

/// Raises it: every phone needs one, and the usual limit is 256.
void allowMany();

/// What it is to be where it is `limit` now: never less.
rlim_t enough(const rlimit& limit);

}  // namespace orvel::OpenFiles
