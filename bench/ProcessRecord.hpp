#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <string>

/// What the kernel writes down about a running process. Threads: any.
namespace orvel::bench {

struct ThreadRecord {
  std::string name;
  std::int64_t sleeps = 0;  ///< How often it went to sleep, and hence was woken.
};

/// The threads of a process by their numbers.
std::map<pid_t, ThreadRecord> threadsOf(pid_t process);

/// Memory in KiB.
struct MemoryRecord {
  std::int64_t resident = 0;      ///< RSS, pages shared with others included.
  std::int64_t proportional = 0;  ///< PSS, each shared page divided by those who share it.
  std::int64_t privateDirty = 0;
  std::int64_t anonymous = 0;
};

MemoryRecord memoryOf(pid_t process);

/// The processor time of all its threads until now, in user space and in the kernel.
std::chrono::nanoseconds processorTimeOf(pid_t process);

}  // namespace orvel::bench
