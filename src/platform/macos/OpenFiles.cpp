#include "platform/macos/OpenFiles.hpp"

#include <algorithm>

namespace orvel {
namespace {

/// More than this the system refuses, even where the hard limit is said to be infinite.
constexpr rlim_t most = 10240;

}  // namespace

void OpenFiles::allowMany() {
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return;
  limit.rlim_cur = enough(limit);
  setrlimit(RLIMIT_NOFILE, &limit);
}

rlim_t OpenFiles::enough(const rlimit& limit) {
  return std::max(limit.rlim_cur, std::min(limit.rlim_max, most));
}

}  // namespace orvel
