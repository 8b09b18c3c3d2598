#include "base/Hex.hpp"

#include <gtest/gtest.h>

#include <array>

namespace orvel {
namespace {

TEST(Hex, WritesTwoLowerCaseDigitsForEachByte) {
  const std::array<std::uint8_t, 4> bytes = {0x00, 0x0a, 0x9f, 0xff};
  EXPECT_EQ(lowerHex(bytes), "000a9fff");
  EXPECT_EQ(lowerHex({}), "");
}

}  // namespace
}  // namespace orvel
