#include "platform/linux/capture/FramePace.hpp"

#include <gtest/gtest.h>

namespace orvel {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr FramePace::Time begin{seconds(1000)};

TEST(FramePaceTest, TheFirstFrameIsDueAtOnceAndTheNextAfterTheInterval) {
  FramePace pace(10);
  EXPECT_LE(pace.due(), begin);
  pace.frameAt(begin);
  EXPECT_EQ(pace.due(), begin + milliseconds(100));
}

TEST(FramePaceTest, BeingALittleLateIsNotHandedOn) {
  FramePace pace(10);
  pace.frameAt(begin);
  for (int i = 1; i <= 100; ++i) {
    pace.frameAt(pace.due() + milliseconds(20));
    ASSERT_EQ(pace.due(), begin + (i + 1) * milliseconds(100));
  }
}

TEST(FramePaceTest, BeingVeryLateIsNotMadeUpFor) {
  FramePace pace(10);
  pace.frameAt(begin);
  const auto late = pace.due() + milliseconds(60);
  pace.frameAt(late);
  EXPECT_EQ(pace.due(), late + milliseconds(100));
}

TEST(FramePaceTest, AfterAPauseTheIntervalCountsFromTheFrame) {
  FramePace pace(10);
  pace.frameAt(begin);
  pace.pause();
  const auto afterPause = begin + milliseconds(110);
  EXPECT_LE(pace.due(), afterPause);
  pace.frameAt(afterPause);
  EXPECT_EQ(pace.due(), afterPause + milliseconds(100));
}

TEST(FramePaceTest, ThereAreNeverMoreFramesThanAgreedOn) {
  for (int framesPerSecond = 1; framesPerSecond <= 30; ++framesPerSecond) {
    const FramePace pace(framesPerSecond);
    EXPECT_GE(pace.interval() * framesPerSecond, seconds(1));
    EXPECT_LT(pace.interval() * framesPerSecond, seconds(1) + milliseconds(1));
  }
}

}  // namespace
}  // namespace orvel
