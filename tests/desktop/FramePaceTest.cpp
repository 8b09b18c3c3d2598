#include "platform/linux/capture/FramePace.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

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

TEST(FramePaceTest, ALateFrameDoesNotLetTheNextComeEarly) {
  for (const milliseconds lateness : {milliseconds(1), milliseconds(20), milliseconds(49), milliseconds(500)}) {
    FramePace pace(10);
    pace.frameAt(begin);
    const auto late = pace.due() + lateness;
    pace.frameAt(late);
    EXPECT_EQ(pace.due(), late + milliseconds(100)) << lateness.count();
  }
}

TEST(FramePaceTest, NoSecondHasMoreFramesThanAgreedOnHoweverLateTheyAre) {
  FramePace pace(10);
  std::vector<FramePace::Time> frames;
  for (int i = 0; i < 100; ++i) {
    frames.push_back(std::max(pace.due(), begin) + milliseconds(i * 37 % 50));
    pace.frameAt(frames.back());
  }
  for (std::size_t i = 10; i < frames.size(); ++i) EXPECT_GE(frames[i] - frames[i - 10], seconds(1)) << i;
}

TEST(FramePaceTest, AfterAPauseAFrameIsDueAtOnce) {
  FramePace pace(10);
  pace.frameAt(begin);
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
