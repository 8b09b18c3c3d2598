#include "tools/DecimalNumber.hpp"

#include <gtest/gtest.h>

#include <optional>
#include <string_view>

namespace orvel::phone {
namespace {

TEST(DecimalNumber, IsReadWhole) {
  EXPECT_EQ(decimalNumber("12"), 12.0);
  EXPECT_EQ(decimalNumber("0.25"), 0.25);
  EXPECT_EQ(decimalNumber(".5"), 0.5);
  EXPECT_EQ(decimalNumber("-1.5e2"), -150.0);
}

TEST(DecimalNumber, WhatIsNoneIsRefused) {
  for (const std::string_view text :
       {"", " 1", "1 ", "+1", "1,5", "1.5s", "0x10", "nan", "inf", "-", ".", "1e", "1e999"}) {
    EXPECT_EQ(decimalNumber(text), std::nullopt) << text;
  }
}

}  // namespace
}  // namespace orvel::phone
