#include "ui/QRImage.hpp"
#include "ui/QRMaker.hpp"
#include "ui/QRText.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace orvel {
namespace {

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
