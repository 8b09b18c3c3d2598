#include "tools/KeyNames.hpp"
#include "tools/PhoneFrames.hpp"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace orvel::phone {
namespace {

TEST(KeyNames, NamesKeysByTheirMacOSCodes) {
  EXPECT_EQ(keyChord("a"), (KeyChord{0, 0}));
  EXPECT_EQ(keyChord("0"), (KeyChord{29, 0}));
  EXPECT_EQ(keyChord("return"), (KeyChord{36, 0}));
  EXPECT_EQ(keyChord("escape"), (KeyChord{53, 0}));
  EXPECT_EQ(keyChord("up"), (KeyChord{126, 0}));
  EXPECT_EQ(keyChord("f12"), (KeyChord{111, 0}));
  EXPECT_EQ(keyChord("shift"), (KeyChord{56, 0}));
  EXPECT_EQ(keyChord("-"), keyChord("minus"));
}

TEST(KeyNames, PutsModifiersInFront) {
  EXPECT_EQ(keyChord("cmd+c"), (KeyChord{8, Modifier::command}));
  EXPECT_EQ(keyChord("ctrl+alt+shift+fn+delete"),
            (KeyChord{51, Modifier::control | Modifier::option | Modifier::shift | Modifier::function}));
  EXPECT_EQ(keyChord("command+option+control+="), keyChord("cmd+opt+ctrl+equal"));
}

TEST(KeyNames, DoesNotMindTheCase) {
  EXPECT_EQ(keyChord("CMD+Tab"), keyChord("cmd+tab"));
  EXPECT_EQ(keyChord("0X7E"), keyChord("up"));
}

TEST(KeyNames, TakesCodesOfKeysWithoutAName) {
  EXPECT_EQ(keyChord("0x24"), keyChord("return"));
  EXPECT_EQ(keyChord("shift+0xffff"), (KeyChord{0xffff, Modifier::shift}));
}

TEST(KeyNames, KnowsWhatIsNoKey) {
  for (const char* word :
       {"", "+", "cmd", "cmd+", "+c", "a+c", "cmd++c", "nokey", "12", "0x", "0x10000", "0x1g", "f16"}) {
    EXPECT_FALSE(keyChord(word)) << word;
  }
}

TEST(KeyNames, EveryListedNameIsAKeyAndFitsItsLine) {
  std::istringstream lines(keyNameList());
  int names = 0;
  for (std::string line; std::getline(lines, line);) {
    EXPECT_LE(line.size(), 76u);
    std::istringstream words(line);
    for (std::string word; words >> word; ++names) EXPECT_TRUE(keyChord(word)) << word;
  }
  EXPECT_GT(names, 36);
}

}  // namespace
}  // namespace orvel::phone
