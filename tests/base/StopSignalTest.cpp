#include "base/StopSignal.hpp"

#include <gtest/gtest.h>

#include <condition_variable>
#include <mutex>
#include <thread>

namespace orvel {
namespace {

TEST(StopSignal, IsGivenOnceAndForAll) {
  StopSignal signal;
  EXPECT_FALSE(signal.isGiven());
  signal.give();
  signal.give();
  EXPECT_TRUE(signal.isGiven());
}

TEST(StopSignal, WakesWhoeverWaits) {
  StopSignal signal;
  std::mutex mutex;
  std::condition_variable changed;
  bool isWaiting = false;
  std::thread waiting([&] {
    const StopSignal::Waiter waiter(signal, mutex, changed);
    std::unique_lock lock(mutex);
    isWaiting = true;
    changed.notify_all();
    changed.wait(lock, [&] { return signal.isGiven(); });
  });
  {
    std::unique_lock lock(mutex);
    changed.wait(lock, [&] { return isWaiting; });
  }
  signal.give();
  waiting.join();
}

TEST(StopSignal, ForgetsWhoeverHasGone) {
  StopSignal signal;
  {
    std::mutex mutex;
    std::condition_variable changed;
    const StopSignal::Waiter waiter(signal, mutex, changed);
  }
  signal.give();
  EXPECT_TRUE(signal.isGiven());
}

}  // namespace
}  // namespace orvel
