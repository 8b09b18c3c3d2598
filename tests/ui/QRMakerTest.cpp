#include "ui/QRMaker.hpp"

#include <gmock/gmock.h>
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

/// What the standard says of a code's size: 42 bytes are the most that version 3 holds at level M, in 29 modules.
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

/// One dark module, with a light one beside and a dark one below it.
const QRImage small{.side = 190, .modulesPerSide = 2, .darkModules = {true, false, true, true}};

const std::string lightRow = "██████████\n";

TEST(QRTextTest, DrawsLightModulesWithinALightMargin) {
  EXPECT_EQ(QRText::lines(small, false), lightRow + lightRow + "████ ▀████\n" + lightRow + lightRow);
}

TEST(QRTextTest, SetsItsOwnColoursLineByLine) {
  const std::string text = QRText::lines(small, true);
  EXPECT_THAT(text, testing::StartsWith("\033[38;5;231;48;5;16m██████████\033[0m\n"));
  EXPECT_THAT(text, testing::EndsWith("\033[0m\n"));
}

TEST(QRTextTest, AnOddNumberOfRowsEndsInHalfALine) {
  const QRImage odd{.side = 190, .modulesPerSide = 1, .darkModules = {true}};
  EXPECT_THAT(QRText::lines(odd, false), testing::EndsWith("\n▀▀▀▀▀▀▀▀▀\n"));
}

TEST(QRTextTest, APairingFitsIntoATerminal) {
  const auto image = QRMaker::image(std::string(120, 'x'), 190);
  ASSERT_TRUE(image);
  EXPECT_LE(image->modulesPerSide + 8, 80U);
}

}  // namespace
}  // namespace orvel
