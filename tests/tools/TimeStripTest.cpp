#include "tools/JPEGPicture.hpp"
#include "tools/LumaDecoder.hpp"
#include "tools/Scene.hpp"
#include "tools/TimeStrip.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <utility>

namespace orvel::phone {
namespace {

using testing::Optional;

const WallTime someTime{std::chrono::milliseconds(1'793'267'412'345)};

std::optional<WallTime> timeIn(const Picture& picture) {
  return TimeStrip::find(picture.view());
}

/// The same after a JPEG of this quality, which is the worst that a host makes.
std::optional<WallTime> timeAfterJPEG(const Picture& picture, int quality = 20) {
  LumaDecoder decoder;
  const auto decoded = decoder.decode(jpegOf(picture, quality), {picture.width, picture.height});
  if (!decoded) ADD_FAILURE() << decoded.error().text;
  return decoded ? TimeStrip::find(*decoded) : std::nullopt;
}

TEST(TimeStrip, TellsItsTime) {
  for (const std::int64_t time : {0LL, 1LL, 1'793'267'412'345LL, 17'592'186'044'415LL}) {
    const WallTime shown{std::chrono::milliseconds(time)};
    EXPECT_THAT(timeIn(Scene{.time = shown}.picture()), Optional(shown));
  }
}

TEST(TimeStrip, SurvivesBeingScaledAndCompressed) {
  for (double scale = 1.0; scale > 0.29; scale -= 0.05) {
    const auto picture = Scene{.time = someTime}.picture(scale);
    EXPECT_THAT(timeIn(picture), Optional(someTime)) << scale;
    EXPECT_THAT(timeAfterJPEG(picture), Optional(someTime)) << scale;
  }
}

TEST(TimeStrip, SurvivesBeingDistorted) {
  EXPECT_THAT(timeAfterJPEG(Scene{.time = someTime}.picture(0.3, 0.4)), Optional(someTime));
  EXPECT_THAT(timeAfterJPEG(Scene{.time = someTime}.picture(0.4, 0.3)), Optional(someTime));
}

TEST(TimeStrip, IsFoundWhereverItStands) {
  for (int offset = 0; offset < 12; ++offset) {
    const auto picture = Scene{.time = someTime, .left = offset * 23, .top = offset * 41}.picture(0.47);
    EXPECT_THAT(timeAfterJPEG(picture), Optional(someTime)) << offset;
  }
}

TEST(TimeStrip, IsFoundAmongNoise) {
  for (unsigned seed = 1; seed <= 5; ++seed) {
    const auto picture = Scene{.time = someTime, .left = 133, .top = 257, .noise = seed}.picture(0.47);
    EXPECT_THAT(timeAfterJPEG(picture), Optional(someTime)) << seed;
  }
}

TEST(TimeStrip, TheLatestOfSeveralCounts) {
  const auto old = Scene{.time = someTime, .block = 16}.picture();
  const auto late = Scene{.time = someTime + std::chrono::milliseconds(1), .block = 16}.picture();
  for (const auto& [from, to] : {std::pair(Picture(old), Picture(late)), std::pair(Picture(late), Picture(old))}) {
    for (const auto& [left, top] : {std::pair(600, 0), std::pair(0, 300)}) {
      auto both = from;
      for (int y = 0; y < 112; ++y) {
        for (int x = 0; x < 480; ++x) both.at(left + x, top + y) = to.at(x, y);
      }
      EXPECT_THAT(timeIn(both), Optional(someTime + std::chrono::milliseconds(1)));
    }
  }
}

TEST(TimeStrip, MayHaveSmallBlocks) {
  const auto picture = Scene{.time = someTime, .block = 4, .noise = 1}.picture();
  EXPECT_THAT(timeAfterJPEG(picture, 90), Optional(someTime));
}

TEST(TimeStrip, TheWrongChecksumIsNoTime) {
  const Scene scene{.time = someTime};
  for (int row = 1; row <= 5; ++row) {
    for (int column = 9; column <= 20; ++column) {
      auto picture = scene.picture();
      invertBlock(picture, scene, column, row);
      EXPECT_EQ(timeIn(picture), std::nullopt) << column << "," << row;
    }
  }
}

TEST(TimeStrip, AStripThatIsPartlyHiddenIsNoTime) {
  const Scene scene{.time = someTime};
  const int width = TimeStrip::columns * scene.block;
  const int height = TimeStrip::rows * scene.block;
  for (const auto& [right, bottom] : {std::pair(width / 2, height), std::pair(width, height / 2)}) {
    EXPECT_EQ(timeIn(cropped(scene.picture(), scene.left + right, scene.top + bottom)), std::nullopt);
  }
}

TEST(TimeStrip, ThereIsNoneInOtherPictures) {
  EXPECT_EQ(TimeStrip::find({}), std::nullopt);
  EXPECT_EQ(timeIn(uniform(900, 506, 0)), std::nullopt);
  EXPECT_EQ(timeIn(uniform(900, 506, 255)), std::nullopt);
  for (unsigned seed = 1; seed <= 5; ++seed) EXPECT_EQ(timeIn(Scene{.noise = seed}.picture(0.47)), std::nullopt);
}

TEST(TimeStrip, TheSearchOfAPictureFullOfFindersComesToAnEnd) {
  auto picture = uniform(2048, 16384, 255);
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      const int bar = x / 4 % 8;
      if (bar == 0 || (bar >= 2 && bar <= 4) || bar == 6) picture.at(x, y) = 0;
    }
  }
  // Looking at every finder against every other would take longer than a test may.
  EXPECT_EQ(timeIn(picture), std::nullopt);
}

}  // namespace
}  // namespace orvel::phone
