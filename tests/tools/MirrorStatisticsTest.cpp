#include "tools/MirrorStatistics.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvel::phone {
namespace {

using std::chrono::hours;
using std::chrono::milliseconds;
using testing::HasSubstr;

const Moment start{hours(1)};

TEST(MirrorStatistics, ReportsTheWholeOfIt) {
  MirrorStatistics statistics(start);
  for (int frame = 1; frame <= 20; ++frame) statistics.take(frame == 1 ? 2050 : 1000, milliseconds(10 * frame));
  statistics.take(1000, std::nullopt);
  EXPECT_EQ(statistics.report(start + milliseconds(2500)),
            "frames: 21 in 2.5 s, 8.4 frames/s\n"
            "bytes: 1050 a frame, 0.07 Mbit/s\n"
            "age: 100 ms at the median, 190 ms at 95 %, 200 ms at most, of 20 frames\n");
}

TEST(MirrorStatistics, SaysWhenTheAgeIsNotKnown) {
  MirrorStatistics statistics(start);
  statistics.take(1'000'000, std::nullopt);
  EXPECT_EQ(statistics.report(start + milliseconds(500)),
            "frames: 1 in 0.5 s, 2.0 frames/s\n"
            "bytes: 1000000 a frame, 16.00 Mbit/s\n"
            "age: known only when orvel-clock is on that screen\n");
}

TEST(MirrorStatistics, ThereMayBeNoFrameAndNoTime) {
  const MirrorStatistics statistics(start);
  EXPECT_THAT(statistics.report(start), HasSubstr("frames: 0 in 0.0 s, 0.0 frames/s\nbytes: 0 a frame, 0.00 Mbit/s"));
}

TEST(MirrorStatistics, ALineIsOfTheTimeSinceTheLast) {
  MirrorStatistics statistics(start);
  for (int frame = 0; frame < 12; ++frame) statistics.take(25'000, milliseconds(40));
  EXPECT_EQ(statistics.line(start + milliseconds(1000)), "12.0 frames/s, 25000 bytes a frame, 2.40 Mbit/s, 40 ms old");
  statistics.take(500, std::nullopt);
  EXPECT_EQ(statistics.line(start + milliseconds(3000)), "0.5 frames/s, 500 bytes a frame, 0.00 Mbit/s");
  EXPECT_EQ(statistics.line(start + milliseconds(4000)), "0.0 frames/s, 0 bytes a frame, 0.00 Mbit/s");
  EXPECT_EQ(statistics.frames(), 13);
}

TEST(AgeCount, TellsWhichAgeAShareOfAllDoesNotExceed) {
  AgeCount ages;
  for (const int age : {30, 10, 20, 20, -5}) ages.add(milliseconds(age));
  EXPECT_EQ(ages.count(), 5);
  EXPECT_EQ(ages.quantile(0.2), milliseconds(-5));
  EXPECT_EQ(ages.quantile(0.21), milliseconds(10));
  EXPECT_EQ(ages.quantile(0.5), milliseconds(20));
  EXPECT_EQ(ages.quantile(0.8), milliseconds(20));
  EXPECT_EQ(ages.quantile(1), milliseconds(30));
}

TEST(AgeCount, NoAgeIsLongerThanAnHour) {
  AgeCount ages;
  ages.add(hours(2));
  ages.add(-hours(2));
  EXPECT_EQ(ages.quantile(0.5), -hours(1));
  EXPECT_EQ(ages.quantile(1), hours(1));
}

}  // namespace
}  // namespace orvel::phone
