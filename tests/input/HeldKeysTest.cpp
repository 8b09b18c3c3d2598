#include "fakes/RecordingDesktop.hpp"
#include "input/EventPoster.hpp"
#include "input/HeldKeys.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <future>
#include <optional>
#include <utility>
#include <vector>

namespace orvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

KeyEvent pressed(std::uint16_t keyCode) {
  return {.keyCode = keyCode, .down = true};
}

KeyEvent released(std::uint16_t keyCode) {
  return {.keyCode = keyCode, .down = false};
}

struct HeldKeysTest : testing::Test {
  /// The strokes that were posted since the last call.
  std::vector<KeyEvent> strokes() {
    auto result = desktop.all<KeyEvent>();
    desktop.posted.clear();
    return result;
  }

  RecordingDesktop desktop;
  HeldKeys keys{desktop};
  const HeldKeys::Phone anna = keys.addPhone();
  const HeldKeys::Phone ben = keys.addPhone();
};

TEST_F(HeldKeysTest, ReleasesWhatIsStillDown) {
  keys.post(anna, {.keyCode = 8, .down = true, .flags = modifier::command});
  keys.post(anna, pressed(9));
  keys.post(anna, released(9));
  strokes();
  keys.releaseAll(anna);
  EXPECT_THAT(strokes(), ElementsAre(released(8)));
  keys.releaseAll(anna);
  EXPECT_THAT(strokes(), IsEmpty()) << "once";
}

TEST_F(HeldKeysTest, AKeyThatTheDesktopRefusedIsNotHeld) {
  desktop.accepts = false;
  keys.post(anna, pressed(8));
  desktop.accepts = true;
  keys.releaseAll(anna);
  EXPECT_THAT(desktop.posted, IsEmpty());
}

TEST_F(HeldKeysTest, AReleaseThatTheDesktopRefusedIsStillToCome) {
  keys.post(anna, pressed(8));
  desktop.accepts = false;
  keys.post(anna, released(8));
  desktop.accepts = true;
  strokes();
  keys.releaseAll(anna);
  EXPECT_THAT(strokes(), ElementsAre(released(8)));
}

TEST_F(HeldKeysTest, AReleaseThatWasRefusedForAKeyThatNobodyHoldsHoldsNothing) {
  desktop.accepts = false;
  keys.post(anna, released(8));
  desktop.accepts = true;
  keys.releaseAll(anna);
  EXPECT_THAT(strokes(), IsEmpty());
}

TEST_F(HeldKeysTest, AKeyThatTwoPhonesHoldGoesUpWhenTheLastLetsGo) {
  keys.post(anna, pressed(8));
  keys.post(ben, pressed(8));
  EXPECT_THAT(strokes(), ElementsAre(pressed(8), pressed(8)));
  keys.post(anna, released(8));
  EXPECT_THAT(strokes(), IsEmpty());
  keys.post(ben, released(8));
  EXPECT_THAT(strokes(), ElementsAre(released(8)));
}

TEST_F(HeldKeysTest, TheModifiersOfTheLastPressGoWithItsPhone) {
  keys.post(anna, pressed(8));
  keys.post(ben, {.keyCode = 8, .down = true, .flags = modifier::shift});
  strokes();
  keys.post(ben, released(8));
  EXPECT_THAT(strokes(), ElementsAre(KeyEvent{.keyCode = 8, .down = false, .staysDown = true}));
  keys.post(anna, released(8));
  EXPECT_THAT(strokes(), ElementsAre(released(8)));
}

TEST_F(HeldKeysTest, AKeyThatTwoPhonesHoldGoesUpWhenTheLastLeaves) {
  keys.post(anna, pressed(8));
  keys.post(ben, pressed(8));
  strokes();
  keys.releaseAll(ben);
  EXPECT_THAT(strokes(), ElementsAre(KeyEvent{.keyCode = 8, .down = false, .staysDown = true}));
  keys.releaseAll(anna);
  EXPECT_THAT(strokes(), ElementsAre(released(8)));
}

TEST_F(HeldKeysTest, ASecondPressOfAPhoneIsNoSecondHold) {
  keys.post(anna, pressed(8));
  keys.post(ben, pressed(8));
  keys.post(anna, pressed(8));
  keys.post(anna, released(8));
  strokes();
  keys.post(ben, released(8));
  EXPECT_THAT(strokes(), ElementsAre(released(8)));
}

TEST_F(HeldKeysTest, APhoneCannotReleaseWhatOnlyAnotherHolds) {
  keys.post(anna, pressed(8));
  strokes();
  keys.post(ben, released(8));
  EXPECT_THAT(strokes(), IsEmpty());
  keys.post(anna, released(8));
  EXPECT_THAT(strokes(), ElementsAre(released(8)));
}

TEST_F(HeldKeysTest, AReleaseOfWhatNobodyHoldsIsPostedAllTheSame) {
  keys.post(anna, {.keyCode = 8, .down = false, .flags = modifier::shift});
  EXPECT_THAT(strokes(), ElementsAre(KeyEvent{.keyCode = 8, .down = false, .flags = modifier::shift}));
}

constexpr std::uint16_t shiftKey = 56;
constexpr std::uint16_t capsLockKey = 57;
constexpr std::uint16_t rightControlKey = 62;

TEST_F(HeldKeysTest, TheModifiersThatOnlyOthersHoldAreUnwanted) {
  keys.post(anna, pressed(shiftKey));
  keys.post(anna, pressed(capsLockKey));
  keys.post(anna, pressed(9));
  keys.post(ben, pressed(rightControlKey));
  strokes();
  keys.post(anna, pressed(8));
  keys.post(ben, pressed(8));
  EXPECT_THAT(strokes(), ElementsAre(KeyEvent{.keyCode = 8, .down = true, .unwantedKeys = {rightControlKey}},
                                     KeyEvent{.keyCode = 8, .down = true, .unwantedKeys = {shiftKey}}));
  keys.post(ben, pressed(shiftKey));
  keys.post(ben, pressed(8));
  EXPECT_THAT(strokes(), ElementsAre(pressed(shiftKey), pressed(8)))
      << "what both hold is wanted, and modifiers add up";
  keys.releaseAll(anna);
  keys.releaseAll(ben);
  strokes();
  keys.post(ben, pressed(8));
  EXPECT_THAT(strokes(), ElementsAre(pressed(8)));
}

TEST_F(HeldKeysTest, InTheEndAllIsReleasedOnce) {
  keys.post(anna, pressed(8));
  keys.post(ben, pressed(8));
  keys.post(ben, pressed(9));
  strokes();
  keys.releaseAll();
  EXPECT_THAT(strokes(), ElementsAre(released(8), released(9)));
  keys.releaseAll(anna);
  keys.releaseAll(ben);
  EXPECT_THAT(strokes(), IsEmpty());
}

TEST_F(HeldKeysTest, WhatAPhoneThatLeavesHeldIsForgottenThoughTheDesktopRefuses) {
  keys.post(anna, pressed(8));
  desktop.accepts = false;
  keys.releaseAll(anna);
  desktop.accepts = true;
  keys.post(ben, pressed(8));
  strokes();
  keys.post(ben, released(8));
  EXPECT_THAT(strokes(), ElementsAre(released(8)));
}

/// Knows whether its only key is down, and lets another thread go ahead right after it has taken an event.
struct YieldingPoster final : EventPoster {
  bool post(const MouseEvent&) override { return true; }
  bool post(const ScrollEvent&) override { return true; }
  bool post(const KeyEvent& event) override {
    if (!event.staysDown) isDown = event.down;
    if (const auto yield = std::exchange(afterNext, nullptr)) yield();
    return true;
  }
  bool post(const SystemDefinedEvent&) override { return true; }
  bool post(const TextEvent&) override { return true; }
  bool tracksPointer() const override { return false; }
  std::optional<Point> pointerLocation() override { return std::nullopt; }
  void flush() override {}

  bool isDown = false;
  std::function<void()> afterNext;
};

TEST(HeldKeysThreads, AKeyThatOnePressesWhileAnotherReleasesItStaysDown) {
  YieldingPoster poster;
  HeldKeys keys(poster);
  const auto anna = keys.addPhone();
  const auto ben = keys.addPhone();
  keys.post(anna, pressed(8));
  std::future<void> other;
  poster.afterNext = [&] {
    other = std::async(std::launch::async, [&] { keys.post(anna, released(8)); });
    other.wait_for(std::chrono::milliseconds(100));  // in vain where it has to wait for this press
  };
  keys.post(ben, pressed(8));
  other.get();
  EXPECT_TRUE(poster.isDown) << "ben holds it";
  keys.post(ben, released(8));
  EXPECT_FALSE(poster.isDown);
}

}  // namespace
}  // namespace orvel
