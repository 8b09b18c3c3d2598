#include "fakes/FakeClock.hpp"
#include "session/FrameLane.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace orvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A network that takes what it is given in its own time.
struct FrameLaneTest : testing::Test {
  void add(std::uint8_t number) {
    lane.add({.marker = number, .image = {.data = nullptr, .size = frameSize}, .taken = [this, number] {
                taken.push_back(number);
              }});
  }

  void take() {
    ASSERT_TRUE(lane.hasNext());
    sent.push_back(lane.takeNext().marker);
  }

  /// The system accepts the frame that may go; it will be so long on its way out.
  void accept(Seconds time) {
    take();
    leftAt = clock.now() + time;
    lane.accepted();
  }

  static constexpr std::size_t frameSize = 60'000;

  FakeClock clock;
  FakeExecutor queue{clock};
  Seconds leftAt{0};
  std::size_t unacknowledged = 0;  // besides what has not left yet
  int looks = 0;
  int readies = 0;
  std::vector<int> sent;
  std::vector<int> taken;
  FrameLane lane{queue,
                 [this] {
                   ++looks;
                   const Seconds time = std::max(leftAt - clock.now(), Seconds(0));
                   return Backlog{.bytes = unacknowledged + static_cast<std::size_t>(time.count() * 1e5), .time = time};
                 },
                 [this] { ++readies; }};
};

TEST_F(FrameLaneTest, AFrameMayGoAtOnce) {
  EXPECT_FALSE(lane.hasNext());
  add(1);
  EXPECT_EQ(readies, 1);
  take();
  EXPECT_THAT(sent, ElementsAre(1));
  EXPECT_THAT(taken, IsEmpty());
}

TEST_F(FrameLaneTest, AFrameThatLeavesAtOnceIsTaken) {
  add(1);
  accept(Seconds(0));
  EXPECT_THAT(taken, ElementsAre(1));
  EXPECT_FALSE(lane.hasNext());
  EXPECT_EQ(clock.pendingTasks(), 0u);
}

TEST_F(FrameLaneTest, AFrameMayGoWhenTheOneBeforeIsAboutToHaveLeft) {
  add(1);
  accept(Seconds(0.1));
  add(2);
  EXPECT_FALSE(lane.hasNext());
  EXPECT_EQ(readies, 1);
  clock.advance(Seconds(0.085));
  EXPECT_FALSE(lane.hasNext());
  clock.advance(Seconds(0.007));
  EXPECT_TRUE(lane.hasNext()) << "10 ms early, so that the network need not wait for it";
  EXPECT_EQ(readies, 2);
}

TEST_F(FrameLaneTest, WhereFramesWaitTheNewestIsTakenWhenTheNextHasLeft) {
  add(1);
  accept(Seconds(0.1));
  clock.advance(Seconds(0.1));
  EXPECT_THAT(taken, IsEmpty());
  add(2);
  accept(Seconds(0.1));
  EXPECT_THAT(taken, IsEmpty());
  clock.advance(Seconds(0.1));
  EXPECT_THAT(taken, ElementsAre(1)) << "one of two is free again, just when it can be used";
  add(3);
  accept(Seconds(0));
  EXPECT_THAT(taken, ElementsAre(1, 2, 3)) << "and all are when nothing waits any more";
}

TEST_F(FrameLaneTest, LooksRarelyAndOnlyWhileSomethingIsLeaving) {
  add(1);
  accept(Seconds(0.1));
  clock.advance(Seconds(1));
  EXPECT_LE(looks, 8);
  const int before = looks;
  clock.advance(Seconds(100));
  EXPECT_EQ(looks, before);
}

TEST_F(FrameLaneTest, APhoneThatTakesNothingIsLookedAtOnceASecond) {
  add(1);
  take();
  leftAt = Seconds(1e9);
  lane.accepted();
  // Its backlog does not shrink.
  for (int step = 0; step < 20'000; ++step) {
    leftAt += Seconds(0.001);
    clock.advance(Seconds(0.001));
  }
  EXPECT_LE(looks, 35);
  EXPECT_GE(looks, 20);
  leftAt = clock.now();
  clock.advance(Seconds(1));
  add(2);
  EXPECT_TRUE(lane.hasNext());
}

TEST_F(FrameLaneTest, OneFrameMayBeUnacknowledgedButNoMore) {
  add(1);
  unacknowledged = frameSize;
  accept(Seconds(0));
  EXPECT_THAT(taken, ElementsAre(1));
  add(2);
  unacknowledged = 2 * frameSize;
  accept(Seconds(0));
  add(3);
  clock.advance(Seconds(10));
  EXPECT_FALSE(lane.hasNext()) << "although the network was swift";
  EXPECT_THAT(taken, ElementsAre(1));
  unacknowledged = frameSize;
  clock.advance(Seconds(1));
  EXPECT_TRUE(lane.hasNext());
}

TEST_F(FrameLaneTest, AFewMessagesMoreThanAFrameMayBeUnacknowledged) {
  add(1);
  unacknowledged = frameSize + 4096;
  accept(Seconds(0));
  EXPECT_THAT(taken, ElementsAre(1));
  add(2);
  unacknowledged = frameSize + 4097;
  accept(Seconds(0));
  EXPECT_THAT(taken, ElementsAre(1));
}

TEST_F(FrameLaneTest, WhileThingsMoveItLooksOftenHoweverSlowTheyAre) {
  add(1);
  accept(Seconds(100));
  clock.advance(Seconds(1));
  EXPECT_GE(looks, 40) << "for the pace may have risen meanwhile";
}

TEST_F(FrameLaneTest, WhatHasNotGoneCanBeForgotten) {
  add(1);
  take();
  add(2);
  add(3);
  lane.clear();
  EXPECT_THAT(taken, ElementsAre(2, 3));
  leftAt = clock.now() + Seconds(0.1);
  lane.accepted();
  clock.advance(Seconds(0.2));
  EXPECT_FALSE(lane.hasNext());
  add(4);
  accept(Seconds(0));
  EXPECT_THAT(sent, ElementsAre(1, 4));
  EXPECT_THAT(taken, ElementsAre(2, 3, 1, 4));
}

TEST_F(FrameLaneTest, AFrameThatIsBeingWrittenAtTheEndCountsAsTaken) {
  add(1);
  take();
  lane.end();
  EXPECT_THAT(taken, ElementsAre(1));
  lane.accepted();
  clock.advance(Seconds(1));
  EXPECT_THAT(taken, ElementsAre(1));
}

TEST_F(FrameLaneTest, AtTheEndAllAreTaken) {
  add(1);
  accept(Seconds(0.1));
  add(2);
  add(3);
  lane.end();
  EXPECT_THAT(taken, ElementsAre(1, 2, 3));
  EXPECT_FALSE(lane.hasNext());
  add(4);
  EXPECT_THAT(taken, ElementsAre(1, 2, 3, 4));
  EXPECT_FALSE(lane.hasNext());
  lane.accepted();  // as when the system says so too late
  clock.advance(Seconds(1));
  EXPECT_THAT(taken, ElementsAre(1, 2, 3, 4));
}

TEST(FrameLane, MayGoWhileItIsToLookAgain) {
  FakeClock clock;
  FakeExecutor queue(clock);
  {
    FrameLane lane(
        queue, [] { return Backlog{.bytes = 1, .time = Seconds(1)}; }, [] {});
    lane.add({.marker = 1, .image = {}, .taken = [] {}});
    lane.takeNext();
    lane.accepted();
  }
  clock.advance(Seconds(10));
  EXPECT_EQ(clock.pendingTasks(), 0u);
}

}  // namespace
}  // namespace orvel
