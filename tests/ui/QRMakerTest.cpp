#include "ui/QRMaker.hpp"

#include <gtest/gtest.h>

#include <string>

namespace orvel {
namespace {

constexpr double side = 190;

TEST(QRMakerTest, AnEmptyTextYieldsNoImage) {
  EXPECT_FALSE(QRMaker::image("", side));
}

TEST(QRMakerTest, AFewDozenCharactersYieldAnImageOfThatSide) {
  const auto image = QRMaker::image("a few dozen characters, as a pairing needs", side);
  ASSERT_TRUE(image);
  EXPECT_EQ(image->side, 190);
  EXPECT_EQ(image->darkModules.size(), image->modulesPerSide * image->modulesPerSide);
}

/// What the standard tells of a code's size: 42 bytes are the most that version 3 holds at level M, in 29 modules.
TEST(QRMakerTest, IsMadeOfBytesAtLevelM) {
  EXPECT_EQ(QRMaker::image(std::string(42, 'a'), side)->modulesPerSide, 29);
  EXPECT_EQ(QRMaker::image(std::string(43, 'a'), side)->modulesPerSide, 33);
  // As digits, or as capital letters, more would fit.
  EXPECT_EQ(QRMaker::image(std::string(43, '1'), side)->modulesPerSide, 33);
}

TEST(QRMakerTest, TheFormatSaysLevelM) {
  const auto image = QRMaker::image("anything", side);
  ASSERT_TRUE(image);
  // The first two bits of the format beside the upper left mark, under their mask 10, are 00 for level M.
  EXPECT_TRUE(image->isDark(0, 8));
  EXPECT_FALSE(image->isDark(1, 8));
}

TEST(QRMakerTest, HasItsMarksInThreeCorners) {
  const auto image = QRMaker::image("anything", side);
  ASSERT_TRUE(image);
  const std::size_t last = image->modulesPerSide - 1;
  for (std::size_t i = 0; i < 7; ++i) {
    EXPECT_TRUE(image->isDark(i, 0));
    EXPECT_TRUE(image->isDark(last - i, 0));
    EXPECT_TRUE(image->isDark(0, last - i));
  }
  EXPECT_FALSE(image->isDark(7, 0));
}

TEST(QRMakerTest, HoldsTheLargestTextAndNoLarger) {
  EXPECT_TRUE(QRMaker::image(std::string(2331, 'a'), side));
  EXPECT_FALSE(QRMaker::image(std::string(2332, 'a'), side));
}

TEST(QRMakerTest, AZeroByteIsAByteLikeOthers) {
  const std::string text("a\0b", 3);
  EXPECT_NE(QRMaker::image(text, side), QRMaker::image("a", side));
}

}  // namespace
}  // namespace orvel
