#include "desktop/Picture.hpp"
#include "platform/linux/SystemJPEGEncoder.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>

namespace orvel {
namespace {

struct SystemJPEGEncoderTest : testing::Test {
  std::optional<Picture> seen(const Picture& picture, double quality = 0.45) {
    const auto image = encoder.encode(picture.buffer(), quality);
    return image ? decodedJPEG(*image) : std::nullopt;
  }

  std::size_t sizeOf(const Picture& picture, double quality) {
    const auto image = encoder.encode(picture.buffer(), quality);
    return image ? image->size : 0;
  }

  SystemJPEGEncoder encoder;
};

TEST_F(SystemJPEGEncoderTest, AnotherDecoderSeesThePicture) {
  const Picture photo = photograph(640, 400);
  const auto decoded = seen(photo, 0.95);
  ASSERT_TRUE(decoded);
  EXPECT_EQ(decoded->width, 640);
  EXPECT_EQ(decoded->height, 400);
  EXPECT_GE(similarity(*decoded, photo), 0.95);
}

TEST_F(SystemJPEGEncoderTest, EverySizeIsPossible) {
  for (const auto& [width, height] :
       {std::pair{1, 1}, {1, 2}, {2, 1}, {3, 3}, {17, 9}, {16, 15}, {901, 507}, {1, 1000}, {1001, 1}, {16384, 3}}) {
    Picture picture(width, height, 0x606060);
    picture.fill(width - 1, 0, 1, height, 0xd0d0d0);
    picture.fill(0, height - 1, width, 1, 0xd0d0d0);
    const auto decoded = seen(picture, 1);
    ASSERT_TRUE(decoded) << width << " by " << height;
    EXPECT_EQ(decoded->width, width);
    EXPECT_EQ(decoded->height, height);
    EXPECT_NEAR(decoded->at(width - 1, height - 1) & 0xff, 0xd0, 12) << width << " by " << height;
    EXPECT_NEAR(decoded->at(0, height - 1) & 0xff, 0xd0, 12) << width << " by " << height;
    EXPECT_NEAR(decoded->at(width - 1, 0) & 0xff, 0xd0, 12) << width << " by " << height;
  }
}

TEST_F(SystemJPEGEncoderTest, AnOddEdgeHasNoShade) {
  for (const double quality : {0.1, 0.3, 0.6, 0.9}) {
    const auto decoded = seen(Picture(33, 17, 0xc0c0c0), quality);
    ASSERT_TRUE(decoded);
    EXPECT_TRUE(*decoded == Picture(33, 17, decoded->at(0, 0))) << quality;
  }
}

TEST_F(SystemJPEGEncoderTest, RowsMayBeFartherApartThanTheyAreWide) {
  const Picture whole = photograph(300, 200);
  PixelBuffer part = whole.buffer();
  part.width = 101;
  const auto image = encoder.encode(part, 0.9);
  ASSERT_TRUE(image);
  const auto decoded = decodedJPEG(*image);
  ASSERT_TRUE(decoded);
  Picture expected(101, 200);
  for (int y = 0; y < 200; ++y) {
    for (int x = 0; x < 101; ++x) expected.at(x, y) = whole.at(x, y);
  }
  EXPECT_GE(similarity(*decoded, expected), 0.95);
}

TEST_F(SystemJPEGEncoderTest, WhiteIsWhiteAndBlackIsBlack) {
  EXPECT_TRUE(seen(Picture(32, 32, 0xffffff), 1) == Picture(32, 32, 0xffffff));
  EXPECT_TRUE(seen(Picture(32, 32, 0x000000), 1) == Picture(32, 32, 0x000000));
}

TEST_F(SystemJPEGEncoderTest, ColoursAreKept) {
  for (const std::uint32_t colour : {0xff0000u, 0x00ff00u, 0x0000ffu, 0x3080d0u}) {
    const auto decoded = seen(Picture(32, 32, colour), 0.9);
    ASSERT_TRUE(decoded);
    for (int shift = 0; shift < 24; shift += 8) {
      EXPECT_NEAR(decoded->at(16, 16) >> shift & 0xff, colour >> shift & 0xff, 4) << std::hex << colour;
    }
  }
}

TEST_F(SystemJPEGEncoderTest, ABetterQualityTakesMoreBytes) {
  const Picture photo = photograph(320, 240);
  EXPECT_LT(sizeOf(photo, 0), sizeOf(photo, 0.2));
  EXPECT_LT(sizeOf(photo, 0.2), sizeOf(photo, 0.45));
  EXPECT_LT(sizeOf(photo, 0.45), sizeOf(photo, 0.85));
  EXPECT_LT(sizeOf(photo, 0.85), sizeOf(photo, 1));
}

TEST_F(SystemJPEGEncoderTest, AQualityBeyondTheEndsIsTheEnd) {
  const Picture photo = photograph(64, 64);
  EXPECT_GT(sizeOf(photo, 0), 0u);
  EXPECT_EQ(sizeOf(photo, -5), sizeOf(photo, 0));
  EXPECT_EQ(sizeOf(photo, 7), sizeOf(photo, 1));
  EXPECT_EQ(sizeOf(photo, std::numeric_limits<double>::quiet_NaN()), sizeOf(photo, 0));
}

TEST_F(SystemJPEGEncoderTest, WhatIsNoPictureIsNotEncoded) {
  const Picture photo = photograph(64, 64);
  const PixelBuffer whole = photo.buffer();
  EXPECT_FALSE(encoder.encode({}, 0.5));
  EXPECT_FALSE(encoder.encode({nullptr, whole.bytesPerRow, 64, 64}, 0.5));
  EXPECT_FALSE(encoder.encode({whole.bytes, whole.bytesPerRow, 0, 64}, 0.5));
  EXPECT_FALSE(encoder.encode({whole.bytes, whole.bytesPerRow, 64, -1}, 0.5));
  EXPECT_FALSE(encoder.encode({whole.bytes, whole.bytesPerRow, 65, 1}, 0.5)) << "rows overlap";
  EXPECT_FALSE(encoder.encode({whole.bytes, std::size_t{1} << 20, 70000, 1}, 0.5));
  EXPECT_TRUE(encoder.encode(whole, 0.5));
}

TEST_F(SystemJPEGEncoderTest, AnImageOutlivesItsEncoderAndTheNextImage) {
  std::optional<SharedBytes> image;
  const Picture white(64, 64, 0xffffff);
  {
    SystemJPEGEncoder other;
    image = other.encode(white.buffer(), 1);
    ASSERT_TRUE(image);
    other.encode(photograph(64, 64).buffer(), 1);
  }
  EXPECT_TRUE(decodedJPEG(*image) == white);
}

}  // namespace
}  // namespace orvel
