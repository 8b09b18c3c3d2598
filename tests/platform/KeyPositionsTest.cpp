#include "platform/linux/keyboard/KeyPositions.hpp"

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <optional>

namespace orvel {
namespace {

/// Every documented virtual key code that has a key here, and the X key code of that key.
const std::map<int, int> documentedKeys = {
    {0x00, 38},  {0x01, 39},  {0x02, 40},  {0x03, 41},  {0x04, 43},  {0x05, 42},  {0x06, 52},  {0x07, 53},  {0x08, 54},
    {0x09, 55},  {0x0a, 94},  {0x0b, 56},  {0x0c, 24},  {0x0d, 25},  {0x0e, 26},  {0x0f, 27},  {0x10, 29},  {0x11, 28},
    {0x12, 10},  {0x13, 11},  {0x14, 12},  {0x15, 13},  {0x16, 15},  {0x17, 14},  {0x18, 21},  {0x19, 18},  {0x1a, 16},
    {0x1b, 20},  {0x1c, 17},  {0x1d, 19},  {0x1e, 35},  {0x1f, 32},  {0x20, 30},  {0x21, 34},  {0x22, 31},  {0x23, 33},
    {0x24, 36},  {0x25, 46},  {0x26, 44},  {0x27, 48},  {0x28, 45},  {0x29, 47},  {0x2a, 51},  {0x2b, 59},  {0x2c, 61},
    {0x2d, 57},  {0x2e, 58},  {0x2f, 60},  {0x30, 23},  {0x31, 65},  {0x32, 49},  {0x33, 22},  {0x35, 9},   {0x36, 134},
    {0x37, 133}, {0x38, 50},  {0x39, 66},  {0x3a, 64},  {0x3b, 37},  {0x3c, 62},  {0x3d, 108}, {0x3e, 105}, {0x40, 195},
    {0x41, 91},  {0x43, 63},  {0x45, 86},  {0x47, 77},  {0x48, 123}, {0x49, 122}, {0x4a, 121}, {0x4b, 106}, {0x4c, 104},
    {0x4e, 82},  {0x4f, 196}, {0x50, 197}, {0x51, 125}, {0x52, 90},  {0x53, 87},  {0x54, 88},  {0x55, 89},  {0x56, 83},
    {0x57, 84},  {0x58, 85},  {0x59, 79},  {0x5a, 198}, {0x5b, 80},  {0x5c, 81},  {0x5d, 132}, {0x5e, 97},  {0x5f, 103},
    {0x60, 71},  {0x61, 72},  {0x62, 73},  {0x63, 69},  {0x64, 74},  {0x65, 75},  {0x66, 102}, {0x67, 95},  {0x68, 100},
    {0x69, 191}, {0x6a, 194}, {0x6b, 192}, {0x6d, 76},  {0x6e, 135}, {0x6f, 96},  {0x71, 193}, {0x72, 118}, {0x73, 110},
    {0x74, 112}, {0x75, 119}, {0x76, 70},  {0x77, 115}, {0x78, 68},  {0x79, 117}, {0x7a, 67},  {0x7b, 113}, {0x7c, 114},
    {0x7d, 116}, {0x7e, 111},
};

TEST(KeyPositionsTest, EveryDocumentedKeyHasItsPlaceAndNoOtherHasOne) {
  for (int code = 0; code <= 0xffff; ++code) {
    const auto known = documentedKeys.find(code);
    const auto expected = known == documentedKeys.end() ? std::nullopt : std::optional<int>(known->second);
    const auto found = KeyPositions::keyCodeOf(static_cast<std::uint16_t>(code));
    ASSERT_EQ(found ? std::optional<int>(*found) : std::nullopt, expected) << "virtual key code " << code;
  }
}

TEST(KeyPositionsTest, NoTwoKeysShareAPlace) {
  std::map<int, int> codes;
  for (const auto& [code, keyCode] : documentedKeys) {
    const auto [other, isNew] = codes.emplace(keyCode, code);
    EXPECT_TRUE(isNew) << "virtual key codes " << other->second << " and " << code;
  }
}

TEST(KeyPositionsTest, ThePlaceCountsAndNotTheLetter) {
  EXPECT_EQ(KeyPositions::keyCodeOf(0x0c), 24) << "Q, first of the upper row";
  EXPECT_EQ(KeyPositions::keyCodeOf(0x0a), 94) << "the extra key of European keyboards";
  EXPECT_EQ(KeyPositions::keyCodeOf(0x72), 118) << "help is where others have Insert";
}

TEST(KeyPositionsTest, BothSidesHaveTheirModifiers) {
  EXPECT_EQ(KeyPositions::keyCodeOf(0x38), 50) << "left shift";
  EXPECT_EQ(KeyPositions::keyCodeOf(0x3c), 62) << "right shift";
  EXPECT_EQ(KeyPositions::keyCodeOf(0x3b), 37) << "left control";
  EXPECT_EQ(KeyPositions::keyCodeOf(0x3e), 105) << "right control";
  EXPECT_EQ(KeyPositions::keyCodeOf(0x3a), 64) << "left option";
  EXPECT_EQ(KeyPositions::keyCodeOf(0x3d), 108) << "right option";
  EXPECT_EQ(KeyPositions::keyCodeOf(0x37), 133) << "left command";
  EXPECT_EQ(KeyPositions::keyCodeOf(0x36), 134) << "right command";
}

TEST(KeyPositionsTest, TheFunctionKeyOfAMacHasNoPlace) {
  EXPECT_EQ(KeyPositions::keyCodeOf(0x3f), std::nullopt);
}

}  // namespace
}  // namespace orvel
