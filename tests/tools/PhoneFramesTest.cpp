#include "tools/PhoneFrames.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace orvel::phone {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;

// A frame can be made before the program runs.
static_assert(moveFrame(1, 2) == std::array<std::uint8_t, 5>{1, 1, 0, 2, 0});

TEST(PhoneFrames, MoveIsLittleEndianWithASign) {
  EXPECT_THAT(moveFrame(100, -2), ElementsAre(0x01, 0x64, 0x00, 0xfe, 0xff));
  EXPECT_THAT(moveFrame(-32768, 32767), ElementsAre(0x01, 0x00, 0x80, 0xff, 0x7f));
}

TEST(PhoneFrames, ButtonSaysWhichAndWhetherDown) {
  EXPECT_THAT(buttonFrame(MouseButton::left, true), ElementsAre(0x02, 0x00, 0x01));
  EXPECT_THAT(buttonFrame(MouseButton::right, false), ElementsAre(0x02, 0x01, 0x00));
  EXPECT_THAT(buttonFrame(MouseButton::middle, true), ElementsAre(0x02, 0x02, 0x01));
}

TEST(PhoneFrames, ScrollIsLittleEndianWithASign) {
  EXPECT_THAT(scrollFrame(0, -120), ElementsAre(0x03, 0x00, 0x00, 0x88, 0xff));
}

TEST(PhoneFrames, KeyCarriesCodeStateAndModifiers) {
  EXPECT_THAT(keyFrame(8, true, Modifier::command), ElementsAre(0x04, 0x08, 0x00, 0x01, 0x01));
  EXPECT_THAT(keyFrame(0x1234, false, Modifier::shift | Modifier::option | Modifier::control | Modifier::function),
              ElementsAre(0x04, 0x34, 0x12, 0x00, 0x1e));
}

TEST(PhoneFrames, TextIsPrecededByItsLengthInBytes) {
  EXPECT_THAT(*textFrame("é!"), ElementsAre(0x05, 0x03, 0x00, 0xc3, 0xa9, 0x21));
  EXPECT_THAT(*textFrame(""), ElementsAre(0x05, 0x00, 0x00));
}

TEST(PhoneFrames, TextHasALongestLength) {
  const auto longest = textFrame(std::string(longestFrameText, 'a'));
  ASSERT_TRUE(longest);
  EXPECT_THAT(std::vector(longest->begin(), longest->begin() + 4), ElementsAre(0x05, 0xff, 0xff, 'a'));
  EXPECT_EQ(longest->size(), longestFrameText + 3);
  EXPECT_FALSE(textFrame(std::string(longestFrameText + 1, 'a')));
}

TEST(PhoneFrames, MediaCarriesItsNumber) {
  EXPECT_THAT(mediaFrame(16), ElementsAre(0x06, 0x10));
}

TEST(PhoneFrames, AppCarriesActionAndIdentifier) {
  EXPECT_THAT(*appFrame(AppAction::quit, "ab"), ElementsAre(0x07, 0x01, 0x02, 0x00, 'a', 'b'));
  EXPECT_THAT(*appFrame(AppAction::activate, ""), ElementsAre(0x07, 0x00, 0x00, 0x00));
  EXPECT_FALSE(appFrame(AppAction::activate, std::string(longestFrameText + 1, 'a')));
}

TEST(PhoneFrames, ClickCarriesButtonAndCount) {
  EXPECT_THAT(clickFrame(MouseButton::left, 2), ElementsAre(0x08, 0x00, 0x02));
}

TEST(PhoneFrames, MoveAbsoluteReachesBothEdges) {
  EXPECT_THAT(moveAbsoluteFrame(0, 1), ElementsAre(0x09, 0x00, 0x00, 0xff, 0xff));
  EXPECT_THAT(moveAbsoluteFrame(0.5, 0.25), ElementsAre(0x09, 0x00, 0x80, 0x00, 0x40));
}

TEST(PhoneFrames, MoveAbsoluteStaysOnTheDisplay) {
  EXPECT_THAT(moveAbsoluteFrame(-3, 7.5), ElementsAreArray(moveAbsoluteFrame(0, 1)));
}

}  // namespace
}  // namespace orvel::phone
