#include "base/UTF8.hpp"

#include <gtest/gtest.h>

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

}  // namespace
}  // namespace orvel
