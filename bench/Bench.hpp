#pragma once

#include <functional>
#include <string>

namespace orvel::bench {

/// What a benchmark found: whether it is within its limit, and that limit in words.
struct Verdict {
  bool isWithinLimit = false;
  std::string limit;
};

/// Runs a benchmark and prints its verdict as the last line. Goes into a network of its own first, where the system
/// permits it, for the port of the host is fixed and may be taken. Returns the program's exit code: 1 when `measure`
/// threw, which is how it says that it could not measure.
int runBench(const std::string& title, const std::function<Verdict()>& measure);

}  // namespace orvel::bench
