#include "base/Clock.hpp"

#include <thread>

namespace orvel {

Seconds SystemClock::now() const {
  return std::chrono::steady_clock::now().time_since_epoch();
}

void SystemClock::sleep(Seconds duration) {
  std::this_thread::sleep_for(duration);
}

}  // namespace orvel
