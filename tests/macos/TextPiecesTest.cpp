#include "MacTest.hpp"
#include "platform/macos/TextPieces.hpp"

#include <gmock/gmock.h>

#include <string>

namespace orvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using TextPiecesTest = MacTest;

std::u16string repeated(const std::u16string& text, int count) {
  std::u16string result;
  for (int at = 0; at < count; ++at) result += text;
  return result;
}

TEST_F(TextPiecesTest, TwentyUnitsAreOnePiece) {
  EXPECT_THAT(textPieces(u"a"), ElementsAre(u"a"));
  EXPECT_THAT(textPieces(repeated(u"é", 20)), ElementsAre(repeated(u"é", 20)));
  EXPECT_THAT(textPieces(repeated(u"é", 21)), ElementsAre(repeated(u"é", 20), u"é"));
}

TEST_F(TextPiecesTest, ASurrogatePairIsNotSplit) {
  const std::u16string text = u"a" + repeated(u"👍", 16);
  EXPECT_THAT(textPieces(text), ElementsAre(u"a" + repeated(u"👍", 9), repeated(u"👍", 7)));
}

TEST_F(TextPiecesTest, WhatPeopleSeeAsOneCharacterIsNotSplit) {
  const std::u16string family = u"👨‍👩‍👧‍👦";
  ASSERT_EQ(family.size(), 11u);
  EXPECT_THAT(textPieces(repeated(family, 3)), ElementsAre(family, family, family));
  const std::u16string flag = u"🇩🇪";
  EXPECT_THAT(textPieces(u"ab" + repeated(flag, 5)), ElementsAre(u"ab" + repeated(flag, 4), flag));
  const std::u16string accents = u"e\u0301\u0323";
  EXPECT_THAT(textPieces(repeated(accents, 7)), ElementsAre(repeated(accents, 6), accents));
}

TEST_F(TextPiecesTest, ACharacterThatIsTooLongIsSplitBetweenItsParts) {
  const std::u16string marks = u"e" + repeated(u"\u0301", 44);
  EXPECT_THAT(textPieces(u"ab" + marks + u"c"),
              ElementsAre(u"ab", marks.substr(0, 20), marks.substr(20, 20), marks.substr(40) + u"c"));
  const std::u16string people = u"👨" + repeated(u"\u200d👩", 8);
  const auto pieces = textPieces(people);
  EXPECT_THAT(pieces, ElementsAre(people.substr(0, 20), people.substr(20)));
  const std::u16string shifted = u"👨\u0301" + repeated(u"\u200d👩", 8);
  EXPECT_THAT(textPieces(shifted), ElementsAre(shifted.substr(0, 19), shifted.substr(19)))
      << "the twentieth unit is the first half of a pair";
}

TEST_F(TextPiecesTest, ACharacterThatJustFitsIsOnePieceAndNoEmptyOne) {
  const std::u16string marks = u"e" + repeated(u"\u0301", 19);
  EXPECT_THAT(textPieces(marks), ElementsAre(marks));
  EXPECT_THAT(textPieces(marks + u"a"), ElementsAre(marks, u"a"));
}

TEST_F(TextPiecesTest, WhatIsNoTextHasNoPieces) {
  EXPECT_THAT(textPieces(u""), IsEmpty());
  EXPECT_THAT(textPieces(std::u16string(1, char16_t{0xd83d})), IsEmpty());
}

}  // namespace
}  // namespace orvel
