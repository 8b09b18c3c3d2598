#pragma once

#include <functional>
#include <thread>

namespace orvel {

/// Runs `work` on a thread that has no pool, as those of the program have none: whatever is autoreleased there outside
/// a pool of the leaf's own ends the test.
inline void onBareThread(const std::function<void()>& work) {
  std::thread(work).join();
}

}  // namespace orvel
