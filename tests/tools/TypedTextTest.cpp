#include "tools/PhoneFrames.hpp"
#include "tools/TypedText.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace orvel::phone {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

std::string repeated(const std::string& text, std::size_t count) {
  std::string all;
  for (std::size_t index = 0; index < count; ++index) all += text;
  return all;
}

TEST(TypedText, WhatFitsAFrameStaysWhole) {
  EXPECT_THAT(frameParts(""), IsEmpty());
  EXPECT_THAT(frameParts("é\n\t!"), ElementsAre("é\n\t!"));
  EXPECT_THAT(frameParts(std::string(longestFrameText, 'a')), SizeIs(1));
}

TEST(TypedText, LongTextGoesInAsFewFramesAsItTakes) {
  const std::string text(2 * longestFrameText + 1, 'a');
  const auto parts = frameParts(text);
  ASSERT_THAT(parts, SizeIs(3));
  EXPECT_EQ(parts[0].size(), longestFrameText);
  EXPECT_EQ(parts[1].size(), longestFrameText);
  EXPECT_EQ(parts[2], "a");
}

TEST(TypedText, NoCharacterIsSplit) {
  for (const char* character : {"é", "日", "👍"}) {
    for (const char* before : {"", "a", "ab", "abc"}) {
      const std::string text = before + repeated(character, 40000);
      std::string joined;
      for (const auto part : frameParts(text)) {
        EXPECT_LE(part.size(), longestFrameText);
        EXPECT_NE(static_cast<unsigned char>(part.front()) & 0xc0, 0x80) << "starts in the middle";
        joined += part;
      }
      EXPECT_EQ(joined, text);
    }
  }
}

TEST(TypedText, WhatPeopleSeeAsOneCharacterIsNotSplit) {
  const std::string family = "👨‍👩‍👧";
  const std::string accented = "e\u0301";
  const std::string flag = "🇩🇪";
  const std::string lineBreak = "\r\n";
  for (const std::string& cluster : {family, accented, flag, lineBreak}) {
    const std::string start(longestFrameText - cluster.size() + 1, 'a');
    const std::string text = start + cluster + "b";
    EXPECT_THAT(frameParts(text), ElementsAre(start, cluster + "b"));
  }
}

TEST(TypedText, ACharacterThatFillsMoreThanAFrameIsSplitBetweenItsMarks) {
  const std::string towering = "e" + repeated("\u0301", 80000);
  const std::string text = "ab" + towering + "cd";
  const auto parts = frameParts(text);
  std::string joined;
  for (const auto part : parts) {
    EXPECT_LE(part.size(), longestFrameText);
    EXPECT_NE(static_cast<unsigned char>(part.front()) & 0xc0, 0x80) << "starts in the middle";
    joined += part;
  }
  EXPECT_EQ(joined, text);
  EXPECT_EQ(parts.front(), "ab");
}

TEST(TypedText, IsReadUpToItsEnd) {
  std::istringstream in("two\nlines\n");
  const auto text = readTypedText(in);
  ASSERT_TRUE(text);
  EXPECT_EQ(*text, "two\nlines\n");
  std::istringstream nothing;
  ASSERT_TRUE(readTypedText(nothing));
}

TEST(TypedText, MustBeUTF8) {
  std::istringstream in("caf\xe9");
  const auto text = readTypedText(in);
  ASSERT_FALSE(text);
  EXPECT_EQ(text.error().kind, Error::Kind::local);
  EXPECT_THAT(text.error().text, HasSubstr("UTF-8"));
}

TEST(TypedText, HasAnEnd) {
  std::istringstream longest(std::string(longestTypedText, 'a'));
  ASSERT_TRUE(readTypedText(longest));
  std::istringstream tooLong(std::string(longestTypedText + 1, 'a'));
  const auto text = readTypedText(tooLong);
  ASSERT_FALSE(text);
  EXPECT_THAT(text.error().text, HasSubstr("too long"));
}

}  // namespace
}  // namespace orvel::phone
