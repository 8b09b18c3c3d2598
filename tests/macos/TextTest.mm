#include "MacTest.hpp"
#include "platform/macos/NativeText.hpp"
#include "runtime/Foundation.hpp"

#include <string>

namespace orvel {
namespace {

using TextTest = MacTest;

TEST_F(TextTest, GoesBothWays) {
  for (const std::string text : {"", "Orvel", "Büro – 日本 👍🏽"}) {
    const auto there = NativeText::toCF(text);
    ASSERT_TRUE(there);
    EXPECT_EQ(NativeText::fromCF(there.get()), text);
  }
}

TEST_F(TextTest, NoneIsEmpty) {
  EXPECT_EQ(NativeText::fromCF(nullptr), "");
}

TEST_F(TextTest, ALiteralIsReadAsAnyOther) {
  EXPECT_EQ(NativeText::fromCF(CFSTR("AXButton")), "AXButton");
  EXPECT_EQ(NativeText::fromCF((__bridge CFStringRef) @"AXLink"), "AXLink");
}

TEST_F(TextTest, OtherBytesAreNone) {
  for (const char* bytes : {"\xff", "\xc3", "\xa9", "fine \xe4\xb8 not"})
    EXPECT_FALSE(NativeText::toCF(bytes)) << bytes;
}

TEST_F(TextTest, GoesBothWaysInObjectiveC) {
  for (const std::string text : {"", "Orvel", "Büro – 日本 👍🏽"}) {
    EXPECT_EQ(NativeText::fromNS(NativeText::toNS(text)), text);
  }
  EXPECT_EQ(NativeText::fromNS(nil), std::nullopt);
  EXPECT_EQ(NativeText::toNS("\xff"), nil);
}

}  // namespace
}  // namespace orvel
