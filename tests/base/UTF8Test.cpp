#include "base/UTF8.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace orvel {
namespace {

TEST(UTF8, AcceptsEveryLengthOfCharacter) {
  EXPECT_TRUE(isValidUTF8(""));
  EXPECT_TRUE(isValidUTF8("plain"));
  EXPECT_TRUE(isValidUTF8(std::string_view("a\0b", 3)));
  EXPECT_TRUE(isValidUTF8("\xc3\xa9 \xe4\xb8\xad \xf0\x9f\x91\x8d"));
  EXPECT_TRUE(isValidUTF8("\xf4\x8f\xbf\xbf"));
}

TEST(UTF8, RefusesWhatIsNotWellFormed) {
  EXPECT_FALSE(isValidUTF8("\xc3"));              // cut off
  EXPECT_FALSE(isValidUTF8("\xa9"));              // starts in the middle
  EXPECT_FALSE(isValidUTF8("\xc0\xaf"));          // longer than needed
  EXPECT_FALSE(isValidUTF8("\xed\xa0\x80"));      // a surrogate
  EXPECT_FALSE(isValidUTF8("\xf4\x90\x80\x80"));  // beyond the last character
  EXPECT_FALSE(isValidUTF8("fine \xff not"));
}

TEST(UTF8, BecomesUTF16) {
  EXPECT_EQ(utf16(""), u"");
  EXPECT_EQ(utf16("a\u00e9\u4e2d\U0001F44D"), u"a\u00e9\u4e2d\U0001F44D");
  EXPECT_EQ(utf16("\U0001F44D").size(), 2u);
  EXPECT_EQ(utf16("a\xff"), u"a\ufffd");
}

TEST(UTF8, IsMadeWellFormed) {
  EXPECT_EQ(wellFormedUTF8(""), "");
  EXPECT_EQ(wellFormedUTF8("a\u00e9\u4e2d\U0001F44D"), "a\u00e9\u4e2d\U0001F44D");
  EXPECT_EQ(wellFormedUTF8("De\xffsk"), "De\ufffdsk");
  EXPECT_EQ(wellFormedUTF8("\xed\xa0\x80"), "\ufffd\ufffd\ufffd");
}

TEST(UTF8, IsTrimmedOfTheBlanksAroundIt) {
  EXPECT_EQ(trimmed(" \t two words\r\n"), "two words");
  EXPECT_EQ(trimmed("word"), "word");
  EXPECT_EQ(trimmed(" \n"), "");
  EXPECT_EQ(trimmed(""), "");
}

using testing::ElementsAre;
using testing::IsEmpty;

TEST(Chunked, AnEmptyTextHasNoPieces) {
  EXPECT_THAT(chunked("", 16), IsEmpty());
}

TEST(Chunked, PiecesAreFullButTheLast) {
  EXPECT_THAT(chunked("abcdefgh", 3), ElementsAre("abc", "def", "gh"));
  EXPECT_THAT(chunked("abcdef", 3), ElementsAre("abc", "def"));
  EXPECT_THAT(chunked("ab", 3), ElementsAre("ab"));
  EXPECT_THAT(chunked(std::string_view("a\0b", 3), 2), ElementsAre(std::string_view("a\0", 2), "b"));
}

TEST(Chunked, WhatPeopleSeeAsOneCharacterStaysWhole) {
  const char* characters[] = {
      "e\u0301",                                                                 // a letter and its accent
      "\U0001F1E9\U0001F1EA",                                                    // a flag
      "\U0001F44D\U0001F3FD",                                                    // a skin tone
      "\U0001F468\u200D\U0001F469\u200D\U0001F467",                              // a family
      "\U0001F3F4\U000E0067\U000E0062\U000E0065\U000E006E\U000E0067\U000E007F",  // a flag made of tags
      "\u1112\u1161\u11AB",                                                      // a syllable made of its letters
      "1\uFE0F\u20E3",                                                           // a key cap
      "\r\n",
  };
  for (const std::string character : characters) {
    const std::string text = "a" + character + "b";
    EXPECT_THAT(chunked(text, 1), ElementsAre("a", character, "b"));
    EXPECT_THAT(chunked(text, 2), ElementsAre("a" + character, "b"));
  }
}

TEST(Chunked, FlagsInARowAreCountedInPairs) {
  const std::string de = "\U0001F1E9\U0001F1EA";
  const std::string fr = "\U0001F1EB\U0001F1F7";
  EXPECT_THAT(chunked(de + fr + de, 2), ElementsAre(de + fr, de));
}

TEST(Chunked, AnEndlessCharacterIsOnePiece) {
  std::string text = "a";
  for (int accent = 0; accent < 30'000; ++accent) text += "\u0301";
  EXPECT_THAT(chunked(text + "b", 1), ElementsAre(text, "b"));
}

}  // namespace
}  // namespace orvel
