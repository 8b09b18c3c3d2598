#include "program/ProgramFixture.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <csignal>
#include <string>
#include <vector>

namespace orvel {
namespace {

using Kind = X11Witness::Kind;

constexpr int volumeUpKey = 123;
constexpr int letterX = 53;
constexpr int returnKey = 36;  // the virtual key code and that of X are the same
constexpr int shiftKey = 50;
constexpr int levelKey = 92;
constexpr std::uint16_t virtualShiftKey = 0x38;

struct TypingTest : ProgramFixture {
  std::size_t typedCharacters() const {
    return static_cast<std::size_t>(
        std::count_if(witness.inputs().begin(), witness.inputs().end(),
                      [](const auto& input) { return input.kind == Kind::keyDown && input.detail == letterX; }));
  }

  /// Whether the pointer comes to a place while keys come all the time.
  bool waitForMotionTo(int x, int y) {
    return witness.waitFor([&](const X11Witness::Inputs& inputs) {
      return std::any_of(inputs.begin(), inputs.end(),
                         [&](const auto& input) { return input.kind == Kind::motion && input.x == x && input.y == y; });
    });
  }

  static void press(phone::PhoneClient& phone, std::uint16_t keyCode) {
    for (const bool down : {true, false}) phone.sendFrame(phone::keyFrame(keyCode, down, 0));
  }

  /// The keys that went down so far, by their numbers in X, but for the one that has programs fetch the map.
  std::vector<int> pressedKeys() const {
    std::vector<int> keys;
    for (const auto& input : witness.inputs()) {
      if (input.kind == Kind::keyDown && input.detail != levelKey) keys.push_back(input.detail);
    }
    return keys;
  }

  static constexpr std::size_t longest = phone::longestFrameText;
};

TEST_F(TypingTest, WhileALongTextIsTypedThePointerFollowsAllPhonesAndTheProgramCanEnd) {
  auto writer = connectPaired("Writer");
  auto other = connectPaired("Other");
  writer.sendFrame(*phone::textFrame(std::string(longest, 'x')));
  ASSERT_TRUE(waitForInput(Kind::keyUp, letterX));
  std::size_t typed = 0;
  for (int turn = 1; turn <= 20; ++turn) {
    auto& phone = turn % 2 == 0 ? other : writer;
    const int x = 10 * turn;
    phone.sendFrame(phone::moveAbsoluteFrame(x / 1280.0, 0.5));
    ASSERT_TRUE(waitForMotionTo(x, 400)) << turn;
    const auto answer = phone.ping(phoneTimeout);
    ASSERT_TRUE(answer);
    EXPECT_LT(*answer, phone::Seconds(1));
    typed += typedCharacters();
    witness.forget();
  }
  EXPECT_GT(typed, 0u);
  EXPECT_LT(typed, longest) << "else nothing of this has been seen";

  host.process().signal(SIGTERM);
  EXPECT_EQ(host.process().waitForExit(Milliseconds(4000)), 0);
  typed += typedCharacters();
  EXPECT_LT(typed, longest) << "the program does not stay for the rest of a text";
}

TEST_F(TypingTest, KeysAndMediaKeysComeAfterTheTextsBeforeThem) {
  auto phone = connectPaired();
  phone.sendFrame(*phone::textFrame(std::string(100, 'x')));
  press(phone, returnKey);
  phone.sendFrame(*phone::textFrame("x"));
  phone.sendFrame(phone::mediaFrame(0));
  ASSERT_TRUE(waitForInput(Kind::keyUp, volumeUpKey));
  std::vector<int> expected(100, letterX);
  expected.insert(expected.end(), {returnKey, letterX, volumeUpKey});
  EXPECT_EQ(pressedKeys(), expected);
}

TEST_F(TypingTest, AKeyComesAfterACharacterThatNoKeyHas) {
  auto phone = connectPaired();
  phone.sendFrame(*phone::textFrame("\u00e9"));
  press(phone, returnKey);
  ASSERT_TRUE(waitForInput(Kind::keyUp, returnKey));
  ASSERT_FALSE(phone.finishWork(phoneTimeout));
  witness.catchUp();
  EXPECT_GE(pressedKeys().size(), 2u);
  EXPECT_EQ(pressedKeys().back(), returnKey);
}

TEST_F(TypingTest, KeysDoNotWaitForTheTextsOfOtherPhones) {
  auto writer = connectPaired("Writer");
  auto other = connectPaired("Other");
  writer.sendFrame(*phone::textFrame(std::string(longest, 'x')));
  ASSERT_TRUE(waitForInput(Kind::keyUp, letterX));
  press(other, returnKey);
  ASSERT_TRUE(waitForInput(Kind::keyUp, returnKey));
  EXPECT_LT(typedCharacters(), longest);
}

TEST_F(TypingTest, KeysBehindTheTextOfAPhoneThatLeavesArePressedAndReleased) {
  auto phone = connectPaired();
  phone.sendFrame(*phone::textFrame(std::string(100, 'x')));
  press(phone, returnKey);
  phone.sendFrame(phone::keyFrame(virtualShiftKey, true, 0));
  settle(phone);
  phone.reset();
  ASSERT_TRUE(waitForInput(Kind::keyUp, shiftKey));
  std::vector<int> expected(100, letterX);
  expected.insert(expected.end(), {returnKey, shiftKey});
  EXPECT_EQ(pressedKeys(), expected);
}

TEST_F(TypingTest, AKeyArrivesWithoutTheModifiersOfAnotherPhone) {
  auto holder = connectPaired("Holder");
  auto other = connectPaired("Other");
  holder.sendFrame(phone::keyFrame(virtualShiftKey, true, 0));
  ASSERT_TRUE(waitForInput(Kind::keyDown, shiftKey));
  press(other, returnKey);
  ASSERT_TRUE(waitForInput(Kind::keyUp, returnKey));
  press(holder, returnKey);
  const auto isUp = [](const auto& input) { return input.kind == Kind::keyUp && input.detail == returnKey; };
  ASSERT_TRUE(
      witness.waitFor([&](const X11Witness::Inputs& inputs) { return std::ranges::count_if(inputs, isUp) == 2; }));
  std::vector<unsigned> states;
  for (const auto& input : witness.inputs()) {
    if (input.kind == Kind::keyDown && input.detail == returnKey) states.push_back(input.state);
  }
  EXPECT_EQ(states, (std::vector<unsigned>{0, XCB_MOD_MASK_SHIFT})) << "the holder's own key has its Shift";
}

TEST_F(TypingTest, AKeyThatTwoPhonesHoldGoesUpWithTheLastOfThem) {
  auto first = connectPaired("First");
  auto second = connectPaired("Second");
  for (auto* phone : {&first, &second}) {
    phone->sendFrame(phone::keyFrame(virtualShiftKey, true, 0));
    settle(*phone);
  }
  first.sendFrame(phone::keyFrame(virtualShiftKey, false, 0));
  settle(first);
  for (const auto& input : witness.catchUp()) EXPECT_NE(input.kind, Kind::keyUp);
  second.reset();
  EXPECT_TRUE(waitForInput(Kind::keyUp, shiftKey));
}

TEST_F(TypingTest, AMediaKeyIsPressedAndReleasedOnce) {
  auto phone = connectPaired();
  phone.sendFrame(phone::mediaFrame(0));
  phone.sendFrame(phone::mediaFrame(5));
  settle(phone);
  ASSERT_TRUE(waitForInput(Kind::keyUp, volumeUpKey));
  const auto& inputs = witness.catchUp();
  ASSERT_EQ(inputs.size(), 2u);
  EXPECT_EQ(inputs[0].kind, Kind::keyDown);
  EXPECT_EQ(inputs[0].detail, volumeUpKey);
}

}  // namespace
}  // namespace orvel
