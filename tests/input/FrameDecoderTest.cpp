#include "input/FrameDecoder.hpp"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <vector>

namespace orvel {
namespace {

using namespace FrameDecoder;
using Bytes = std::vector<std::uint8_t>;

template <class Expected>
Expected decoded(const Bytes& frame) {
  const auto command = decode(frame);
  if (!command || !std::holds_alternative<Expected>(*command)) {
    ADD_FAILURE() << "the frame does not decode as expected";
    return {};
  }
  return std::get<Expected>(*command);
}

Bytes withText(Bytes head, std::uint16_t length, const std::string& text) {
  head.push_back(static_cast<std::uint8_t>(length));
  head.push_back(static_cast<std::uint8_t>(length >> 8));
  head.insert(head.end(), text.begin(), text.end());
  return head;
}

TEST(FrameDecoder, RefusesEmptyAndUnknown) {
  EXPECT_FALSE(decode({}));
  for (int opcode : {0, 10, 11, 0x80, 255}) {
    EXPECT_FALSE(decode(Bytes(16, static_cast<std::uint8_t>(opcode)))) << opcode;
  }
}

TEST(FrameDecoder, RefusesEveryFrameBelowItsMinimumLength) {
  const std::size_t minimum[] = {0, 5, 3, 5, 5, 3, 2, 4, 3, 5};
  for (std::uint8_t opcode = 1; opcode <= 9; ++opcode) {
    Bytes frame = {opcode};
    while (frame.size() < minimum[opcode]) {
      EXPECT_FALSE(decode(frame)) << int{opcode} << " of " << frame.size() << " bytes";
      frame.push_back(0);
    }
    EXPECT_TRUE(decode(frame)) << int{opcode} << " of " << frame.size() << " bytes";
  }
}

TEST(FrameDecoder, MotionIsSignedAndLittleEndian) {
  const auto move = decoded<Move>({1, 0xff, 0xff, 0x34, 0x12});
  EXPECT_EQ(move.dx, -1.0);
  EXPECT_EQ(move.dy, 0x1234);
  const auto scroll = decoded<Scroll>({3, 0x01, 0x00, 0x00, 0x80});
  EXPECT_EQ(scroll.dx, 1);
  EXPECT_EQ(scroll.dy, -32768);
}

TEST(FrameDecoder, AbsolutePositionsSpanTheWholeRange) {
  const auto far = decoded<MoveAbsolute>({9, 0xff, 0xff, 0xff, 0xff});
  EXPECT_EQ(far.nx, 1.0);
  EXPECT_EQ(far.ny, 1.0);
  const auto mixed = decoded<MoveAbsolute>({9, 0x00, 0x00, 0xff, 0x7f});
  EXPECT_EQ(mixed.nx, 0.0);
  EXPECT_EQ(mixed.ny, 32767 / 65535.0);
}

TEST(FrameDecoder, OnlyStateOneIsPressed) {
  EXPECT_TRUE(decoded<Button>({2, 2, 1}).down);
  EXPECT_EQ(decoded<Button>({2, 2, 1}).button, 2);
  for (int state : {0, 2, 255}) {
    EXPECT_FALSE(decoded<Button>({2, 0, static_cast<std::uint8_t>(state)}).down) << state;
    EXPECT_FALSE(decoded<Key>({4, 0, 0, static_cast<std::uint8_t>(state), 0}).down) << state;
  }
}

TEST(FrameDecoder, KeysCarryAnUnsignedCodeAndModifiers) {
  const auto key = decoded<Key>({4, 0xff, 0xff, 1, 0x1f});
  EXPECT_EQ(key.keyCode, 0xffff);
  EXPECT_TRUE(key.down);
  EXPECT_EQ(key.modifiers, 0x1f);
}

TEST(FrameDecoder, AClickCountsAtLeastOne) {
  EXPECT_EQ(decoded<Click>({8, 1, 0}).count, 1);
  EXPECT_EQ(decoded<Click>({8, 1, 1}).count, 1);
  EXPECT_EQ(decoded<Click>({8, 1, 3}).count, 3);
  EXPECT_EQ(decoded<Click>({8, 1, 255}).count, 255);
  EXPECT_EQ(decoded<Click>({8, 7, 3}).button, 7);
}

TEST(FrameDecoder, TextLiesWhollyInTheFrame) {
  EXPECT_FALSE(decode(withText({5}, 10, "nine char")));
  EXPECT_EQ(decoded<Text>(withText({5}, 10, "ten chars!")).text, "ten chars!");
  EXPECT_EQ(decoded<Text>(withText({5}, 10, "ten chars!+")).text, "ten chars!");
  EXPECT_EQ(decoded<Text>({5, 0, 0}).text, "");
  EXPECT_EQ(decoded<Text>(withText({5}, 65535, std::string(65535, 'x'))).text.size(), 65535u);
  EXPECT_FALSE(decode(withText({5}, 65535, std::string(65534, 'x'))));
}

TEST(FrameDecoder, TextIsUTF8) {
  EXPECT_FALSE(decode(withText({5}, 1, "\xc3")));
  EXPECT_FALSE(decode(withText({5}, 1, "\xc3\xa9"))) << "the length cuts the character";
  EXPECT_EQ(decoded<Text>(withText({5}, 2, "\xc3\xa9")).text, "\xc3\xa9");
  EXPECT_FALSE(decode(withText({7, 0}, 3, "\xed\xa0\x80")));
}

TEST(FrameDecoder, AnApplicationFrameMayNameNone) {
  const auto app = decoded<App>({7, 1, 0, 0});
  EXPECT_EQ(app.action, 1);
  EXPECT_EQ(app.bundleID, "");
  EXPECT_EQ(decoded<App>(withText({7, 2}, 7, "org.app")).bundleID, "org.app");
  EXPECT_FALSE(decode(withText({7, 2}, 8, "org.app")));
}

TEST(FrameDecoder, MediaCodesAreNotJudgedHere) {
  EXPECT_EQ(decoded<Media>({6, 5}).code, 5);
}

TEST(FrameDecoder, BytesAfterTheLastFieldAreIgnored) {
  EXPECT_EQ(decoded<Move>({1, 2, 0, 3, 0, 99, 99}).dy, 3);
  EXPECT_EQ(decoded<Media>({6, 7, 99}).code, 7);
}

}  // namespace
}  // namespace orvel
