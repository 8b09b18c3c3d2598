#include "tools/JPEGPicture.hpp"
#include "tools/LumaDecoder.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

namespace orvel::phone {
namespace {

using testing::HasSubstr;

TEST(LumaDecoder, ReadsHowBrightThePixelsAre) {
  const Picture picture = Scene{.time = WallTime{}}.picture(0.25);
  LumaDecoder decoder;
  for (int round = 0; round < 2; ++round) {
    const auto decoded = decoder.decode(jpegOf(picture, 95), {picture.width, picture.height});
    ASSERT_TRUE(decoded) << decoded.error().text;
    ASSERT_EQ(decoded->pixels.size(), picture.pixels.size());
    for (std::size_t pixel = 0; pixel < picture.pixels.size(); ++pixel) {
      ASSERT_NEAR(decoded->pixels[pixel], picture.pixels[pixel], 40) << pixel;
    }
  }
}

TEST(LumaDecoder, TakesNoOtherSizeThanItIsTold) {
  LumaDecoder decoder;
  const auto decoded = decoder.decode(jpegOf(uniform(64, 32, 0), 50), {32, 64});
  ASSERT_FALSE(decoded);
  EXPECT_EQ(decoded.error().kind, Error::Kind::unexpected);
  EXPECT_EQ(decoded.error().text, "a frame of 64x32 instead of 32x64 pixels");
}

TEST(LumaDecoder, SaysWhatIsNoPicture) {
  const std::string whole = jpegOf(Scene{.noise = 1}.picture(0.1), 50);
  LumaDecoder decoder;
  for (const std::string& bytes : {std::string(), std::string("\xff\xd8\xff picture \xff\xd9"), whole.substr(0, 100),
                                   whole.substr(0, whole.size() / 2) + "\xff\xd9"}) {
    const auto decoded = decoder.decode(bytes, {128, 80});
    ASSERT_FALSE(decoded) << bytes.size();
    EXPECT_EQ(decoded.error().kind, Error::Kind::unexpected);
    EXPECT_THAT(decoded.error().text, HasSubstr("damaged JPEG"));
  }
  const auto good = decoder.decode(whole, {128, 80});
  EXPECT_TRUE(good) << good.error().text;
}

}  // namespace
}  // namespace orvel::phone
