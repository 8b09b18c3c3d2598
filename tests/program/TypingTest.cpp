#include "program/ProgramFixture.hpp"

#include <gmock/gmock.h>

#include <algorithm>
#include <csignal>
#include <string>

namespace orvel {
namespace {

using Kind = X11Witness::Kind;

constexpr int volumeUpKey = 123;
constexpr int letterX = 53;

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
    const auto answer = phone.ping(phonePatience);
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
