#include "tools/PlainText.hpp"

#include <gtest/gtest.h>

#include <string>

namespace orvel::phone {
namespace {

TEST(PlainText, LeavesTextAsItIs) {
  for (const char* text : {"", "Text Editor", "Éditeur 日本語 👨‍👩‍👧 العربية"})
    EXPECT_EQ(plainText(text), text);
}

TEST(PlainText, TakesAwayWhatSteersATerminal) {
  EXPECT_EQ(plainText("\x1b[2J"), "\ufffd[2J");
  EXPECT_EQ(plainText("a\nb\tc\x7f"), "a\ufffdb\ufffdc\ufffd");
  EXPECT_EQ(plainText(std::string("a\0b", 3)), "a\ufffdb");
  EXPECT_EQ(plainText("\u009b2J"), "\ufffd2J");
  EXPECT_EQ(plainText("\u2028\u2029"), "\ufffd\ufffd");
  EXPECT_EQ(plainText("\u202egnp.exe"), "\ufffdgnp.exe");
}

TEST(PlainText, MakesWhatIsNotUTF8Printable) {
  EXPECT_EQ(plainText("caf\xe9!"), "caf\ufffd!");
}

}  // namespace
}  // namespace orvel::phone
