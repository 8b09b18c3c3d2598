#include "desktop/Picture.hpp"
#include "platform/linux/capture/FrameScaler.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

namespace orvel {
namespace {

struct Sizes {
  int width = 0;
  int height = 0;
  int scaledWidth = 0;
  int scaledHeight = 0;
};

struct FrameScalerTest : testing::TestWithParam<Sizes> {};

int largestDifference(const Picture& one, const Picture& other) {
  int largest = 0;
  for (std::size_t i = 0; i < one.pixels.size(); ++i) {
    for (int shift = 0; shift < 24; shift += 8) {
      const auto channel = [&](const Picture& picture) { return static_cast<int>(picture.pixels[i] >> shift & 0xff); };
      largest = std::max(largest, std::abs(channel(one) - channel(other)));
    }
  }
  return largest;
}

TEST_P(FrameScalerTest, EachPixelIsTheAverageOfAllThatItCovers) {
  const auto [width, height, scaledWidth, scaledHeight] = GetParam();
  FrameScaler scaler(scaledWidth, scaledHeight);
  const Picture page = pageOfText(width, height);
  const Picture scaled(scaler.scale(page.buffer()));
  ASSERT_EQ(scaled.width, scaledWidth);
  ASSERT_EQ(scaled.height, scaledHeight);
  EXPECT_LE(largestDifference(scaled, averaged(page, scaledWidth, scaledHeight)), 4);
}

TEST_P(FrameScalerTest, OneColourStaysThatColour) {
  const auto [width, height, scaledWidth, scaledHeight] = GetParam();
  FrameScaler scaler(scaledWidth, scaledHeight);
  for (const std::uint32_t colour : {0xffffffu, 0x000000u, 0x3080d1u}) {
    EXPECT_TRUE(Picture(scaler.scale(Picture(width, height, colour).buffer())) ==
                Picture(scaledWidth, scaledHeight, colour));
  }
}

INSTANTIATE_TEST_SUITE_P(All, FrameScalerTest,
                         testing::Values(Sizes{1920, 1080, 900, 506}, Sizes{1280, 800, 900, 563},
                                         Sizes{3840, 2160, 320, 240}, Sizes{1366, 768, 1365, 767},
                                         Sizes{640, 480, 320, 240}, Sizes{300, 200, 701, 403}, Sizes{2000, 3, 320, 240},
                                         Sizes{1, 1, 320, 240}, Sizes{5000, 100, 3, 1}));

TEST(FrameScalerSameSizeTest, APictureOfThatSizeIsHandedOnAsItIs) {
  FrameScaler scaler(64, 48);
  const Picture photo = photograph(64, 48);
  EXPECT_EQ(scaler.scale(photo.buffer()).bytes, photo.buffer().bytes);
}

TEST(FrameScalerChangeTest, PicturesMayChangeTheirSize) {
  FrameScaler scaler(100, 100);
  for (const int size : {400, 150, 30, 1000}) {
    const Picture photo = photograph(size, 2 * size);
    EXPECT_LE(largestDifference(Picture(scaler.scale(photo.buffer())), averaged(photo, 100, 100)), 4) << size;
  }
}

}  // namespace
}  // namespace orvel
