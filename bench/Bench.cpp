#include "bench/Bench.hpp"

#include "platform/PrivateNetwork.hpp"

#include <cstdio>
#include <cstdlib>
#include <exception>

namespace orvel::bench {
namespace {

void describePlace() {
  const auto hindrance = enterPrivateNetwork();
  if (hindrance) {
    std::printf("On the loopback interface that all share. %s.\n", hindrance->c_str());
  } else {
    std::printf("In a network of its own, over its loopback interface.\n");
  }
  double load = 0;
  if (getloadavg(&load, 1) == 1) std::printf("Load of the machine before: %.1f\n", load);
}

}  // namespace

int runBench(const std::string& title, const std::function<Verdict()>& measure) {
  std::setvbuf(stdout, nullptr, _IOLBF, 0);
  std::printf("%s\n", title.c_str());
  describePlace();
  std::printf("\n");
  try {
    const Verdict verdict = measure();
    std::printf("\n%s: %s\n", verdict.isWithinLimit ? "Within its limit" : "OUTSIDE ITS LIMIT", verdict.limit.c_str());
    return EXIT_SUCCESS;
  } catch (const std::exception& hindrance) {
    std::printf("\nCould not measure: %s\n", hindrance.what());
    return EXIT_FAILURE;
  }
}

}  // namespace orvel::bench
