#include "base/RepeatingTimer.hpp"
#include "fakes/FakeClock.hpp"

#include <gtest/gtest.h>

#include <memory>

namespace orvel {
namespace {

struct RepeatingTimerTest : testing::Test {
  FakeClock clock;
  FakeExecutor executor{clock};
  int ticks = 0;
};

TEST_F(RepeatingTimerTest, TicksAtOnceAndThenEveryPeriod) {
  const RepeatingTimer timer(executor, clock, Seconds(0), Seconds(1.5), [&] { ++ticks; });
  EXPECT_EQ(ticks, 0) << "the first tick runs on the executor, not in the constructor";
  clock.runDue();
  EXPECT_EQ(ticks, 1);
  clock.advance(Seconds(1.4));
  EXPECT_EQ(ticks, 1);
  clock.advance(Seconds(0.1));
  EXPECT_EQ(ticks, 2);
  clock.advance(Seconds(3));
  EXPECT_EQ(ticks, 4);
}

TEST_F(RepeatingTimerTest, MayWaitBeforeTheFirstTick) {
  const RepeatingTimer timer(executor, clock, Seconds(2), Seconds(1), [&] { ++ticks; });
  clock.advance(Seconds(1.9));
  EXPECT_EQ(ticks, 0);
  clock.advance(Seconds(0.2));
  EXPECT_EQ(ticks, 1);
  clock.advance(Seconds(1));
  EXPECT_EQ(ticks, 2);
}

TEST_F(RepeatingTimerTest, DestroyingItStopsIt) {
  auto timer = std::make_unique<RepeatingTimer>(executor, clock, Seconds(0), Seconds(1), [&] { ++ticks; });
  clock.runDue();
  timer.reset();
  clock.advance(Seconds(10));
  EXPECT_EQ(ticks, 1);
  EXPECT_EQ(clock.pendingTasks(), 0u);
}

TEST_F(RepeatingTimerTest, MayBeDestroyedByItsOwnTick) {
  std::unique_ptr<RepeatingTimer> timer;
  timer = std::make_unique<RepeatingTimer>(executor, clock, Seconds(0), Seconds(1), [&] {
    if (++ticks == 2) timer.reset();
  });
  clock.advance(Seconds(10));
  EXPECT_EQ(ticks, 2);
}

TEST_F(RepeatingTimerTest, DoesNotMakeUpForMissedTicks) {
  const RepeatingTimer timer(executor, clock, Seconds(0), Seconds(1), [&] {
    if (++ticks == 1) clock.sleep(Seconds(5.5));
  });
  clock.advance(Seconds(7));
  // At 0, at once when the long first one is over, and then at 6.5.
  EXPECT_EQ(ticks, 3);
}

}  // namespace
}  // namespace orvel
