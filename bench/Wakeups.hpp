#pragma once

#include <sys/types.h>

#include <string>

namespace orvel::bench {

/// Watches for a while what wakes a host, and prints it under that name. True when it was no more than so many timers
/// with the pace of the permission timer, which is one of them, and no thread came or went. Threads: any.
bool watchSleep(pid_t host, const std::string& name, int timers = 1);

}  // namespace orvel::bench
