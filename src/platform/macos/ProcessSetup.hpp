#pragma once

#include <sys/resource.h>

/// What holds for the whole process and is set once at its start.
namespace orvel::ProcessSetup {

/// Raises the limit of open files: every phone needs one, and the usual limit is 256. Threads: any.
void allowManyFiles();

/// What the limit is to be where it is `limit` now: never less.
rlim_t raised(const rlimit& limit);

/// Has the library that sorts names go by the first of the languages that the user has chosen in System Settings,
/// everywhere in this program. By itself it looks at the environment, which names no language in a program that Finder
/// has started. Threads: the main thread, before there are others.
void applyUserLanguage();

}  // namespace orvel::ProcessSetup
