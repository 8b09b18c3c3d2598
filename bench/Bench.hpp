#pragma once

#include <functional>
#include <string>

namespace orvel::bench {

/// How long or how often something is measured: `brief` where the build only shows that the benchmarks still measure.
template <class Value>
constexpr Value extent(Value whole, Value brief) {
  return ORVEL_BRIEF_BENCH ? brief : whole;
}

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
