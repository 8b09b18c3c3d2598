#include "tools/MediaNames.hpp"

#include <gtest/gtest.h>

namespace orvel::phone {
namespace {

TEST(MediaNames, NamesTheKeysByTheirNumbers) {
  EXPECT_EQ(mediaKey("volume-up"), 0);
  EXPECT_EQ(mediaKey("volume-down"), 1);
  EXPECT_EQ(mediaKey("brightness-up"), 2);
  EXPECT_EQ(mediaKey("brightness-down"), 3);
  EXPECT_EQ(mediaKey("mute"), 7);
  EXPECT_EQ(mediaKey("play-pause"), 16);
  EXPECT_EQ(mediaKey("next"), 17);
  EXPECT_EQ(mediaKey("previous"), 18);
  EXPECT_EQ(mediaKey("fast-forward"), 19);
  EXPECT_EQ(mediaKey("rewind"), 20);
}

TEST(MediaNames, TakesNumbersOfKeysWithoutAName) {
  EXPECT_EQ(mediaKey("0"), 0);
  EXPECT_EQ(mediaKey("5"), 5);
  EXPECT_EQ(mediaKey("255"), 255);
}

TEST(MediaNames, KnowsWhatIsNoKey) {
  for (const char* word : {"", "256", "-1", "7x", " 7", "Mute", "volume"}) EXPECT_FALSE(mediaKey(word)) << word;
}

}  // namespace
}  // namespace orvel::phone
