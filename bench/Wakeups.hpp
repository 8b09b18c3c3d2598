#pragma once

#include <sys/types.h>

#include <string>

namespace orvel::bench {

/// Watches for a while what wakes a host, and prints it under that name. True when that was the permission timer alone,
/// and no thread came or went. Threads: any.
bool watchSleep(pid_t host, const std::string& name);

}  // namespace orvel::bench
