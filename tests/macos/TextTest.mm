#include "MacTest.hpp"
#include "platform/macos/CFText.hpp"
#include "platform/macos/FoundationText.hpp"
#include "runtime/Foundation.hpp"

#include <string>

namespace orvel {
namespace {

using TextTest = MacTest;

TEST_F(TextTest, GoesBothWays) {
  for (const std::string text : {"", "Orvel", "Büro – 日本 👍🏽"}) {
    const auto there = CFText::toSystem(text);
    ASSERT_TRUE(there);
    EXPECT_EQ(CFText::fromSystem(there.get()), text);
  }
}

TEST_F(TextTest, NoneIsEmpty) {
  EXPECT_EQ(CFText::fromSystem(nullptr), "");
}

TEST_F(TextTest, ALiteralIsReadAsAnyOther) {
  EXPECT_EQ(CFText::fromSystem(CFSTR("AXButton")), "AXButton");
  EXPECT_EQ(CFText::fromSystem((__bridge CFStringRef) @"AXLink"), "AXLink");
}

TEST_F(TextTest, OtherBytesAreNone) {
  for (const char* bytes : {"\xff", "\xc3", "\xa9", "fine \xe4\xb8 not"})
    EXPECT_FALSE(CFText::toSystem(bytes)) << bytes;
}

TEST_F(TextTest, GoesBothWaysInObjectiveC) {
  for (const std::string text : {"", "Orvel", "Büro – 日本 👍🏽"}) {
    EXPECT_EQ(FoundationText::fromSystem(FoundationText::toSystem(text)), text);
  }
  EXPECT_EQ(FoundationText::fromSystem(nil), std::nullopt);
  EXPECT_EQ(FoundationText::toSystem("\xff"), nil);
}

}  // namespace
}  // namespace orvel
