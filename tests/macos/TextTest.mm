#include "MacTest.hpp"
#include "platform/macos/CFText.hpp"
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

}  // namespace
}  // namespace orvel
