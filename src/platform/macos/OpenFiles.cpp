#include "platform/macos/OpenFiles.hpp"

#include <sys/resource.h>

#include <algorithm>

namespace orvel {
namespace {

/// More than this the system refuses, even where the hard limit is said to be infinite.
constexpr rlim_t most = 10240;

}  // namespace

void OpenFiles::allowMany() {
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return;
  const rlim_t wanted = std::min(limit.rlim_max, most);
  if (limit.rlim_cur >= wanted) return;
  limit.rlim_cur = wanted;
  setrlimit(RLIMIT_NOFILE, &limit);
}

}  // namespace orvel
