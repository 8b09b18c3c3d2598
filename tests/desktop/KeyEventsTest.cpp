#include "desktop/LeafFixture.hpp"
#include "platform/linux/keyboard/KeyPositions.hpp"

#include <ostream>
#include <utility>
#include <vector>

namespace orvel {
namespace {

using Kind = X11Witness::Kind;

// Virtual key codes.
constexpr std::uint16_t keyA = 0x00;
constexpr std::uint16_t keyC = 0x08;
constexpr std::uint16_t keyV = 0x09;
constexpr std::uint16_t shiftKey = 0x38;
constexpr std::uint16_t capsLockKey = 0x39;
constexpr std::uint16_t functionKey = 0x3f;

// X key codes.
constexpr int a = 38;
constexpr int c = 54;
constexpr int v = 55;
constexpr int control = 37;
constexpr int shift = 50;
constexpr int alt = 64;
constexpr int capsLock = 66;

struct Stroke {
  Kind kind;
  int keyCode;
  unsigned state;

  friend bool operator==(const Stroke&, const Stroke&) = default;
  friend std::ostream& operator<<(std::ostream& out, const Stroke& stroke) {
    return out << X11Witness::Input{.kind = stroke.kind, .detail = stroke.keyCode, .state = stroke.state};
  }
};

Stroke pressed(int keyCode, unsigned state = 0) {
  return {Kind::keyDown, keyCode, state};
}
Stroke released(int keyCode, unsigned state = 0) {
  return {Kind::keyUp, keyCode, state};
}

constexpr unsigned withShift = XCB_MOD_MASK_SHIFT;
constexpr unsigned withControl = XCB_MOD_MASK_CONTROL;
constexpr unsigned withAlt = XCB_MOD_MASK_1;

struct KeyEventsTest : LeafFixture {
  using Strokes = std::vector<Stroke>;

  Strokes strokes() {
    Strokes result;
    for (const auto& input : delivered()) result.push_back({input.kind, input.detail, input.state});
    return result;
  }

  /// Presses a key without what others hold.
  void pressUnwanted(std::uint16_t keyCode, std::vector<std::uint16_t> unwanted) {
    EXPECT_TRUE(leaves.events.post(KeyEvent{.keyCode = keyCode, .down = true, .unwantedKeys = std::move(unwanted)}));
  }
};

TEST_F(KeyEventsTest, EveryKeyOfTheTableArrives) {
  int keys = 0;
  for (std::uint16_t keyCode = 0; keyCode < 0x100; ++keyCode) {
    const auto expected = KeyPositions::keyCodeOf(keyCode);
    EXPECT_EQ(leaves.events.post(KeyEvent{.keyCode = keyCode, .down = true}), expected.has_value());
    EXPECT_EQ(leaves.events.post(KeyEvent{.keyCode = keyCode, .down = false}), expected.has_value());
    if (!expected) continue;
    const auto inputs = delivered();
    ASSERT_EQ(inputs.size(), 2u) << "virtual key code " << keyCode;
    EXPECT_EQ(inputs[0].kind, Kind::keyDown);
    EXPECT_EQ(inputs[0].detail, *expected);
    EXPECT_EQ(inputs[1].kind, Kind::keyUp);
    EXPECT_EQ(inputs[1].detail, *expected);
    ++keys;
  }
  EXPECT_EQ(keys, 119);
}

TEST_F(KeyEventsTest, CommandAndCIsTheShortcutForCopy) {
  key(keyC, true, modifier::command);
  key(keyC, false, modifier::command);
  EXPECT_EQ(strokes(), (Strokes{pressed(control), pressed(c, withControl), released(c, withControl),
                                released(control, withControl)}));
}

TEST_F(KeyEventsTest, ModifiersSurroundTheKey) {
  key(keyA, true, modifier::shift | modifier::option | modifier::control);
  EXPECT_EQ(strokes(), (Strokes{pressed(shift), pressed(alt, withShift), pressed(control, withShift | withAlt),
                                pressed(a, withShift | withAlt | withControl)}));
  key(keyA, false);
  EXPECT_EQ(strokes(), (Strokes{released(a, withShift | withAlt | withControl),
                                released(control, withShift | withAlt | withControl),
                                released(alt, withShift | withAlt), released(shift, withShift)}))
      << "what was pressed with the key goes with it, whatever the release says";
}

TEST_F(KeyEventsTest, CommandAndControlAreOneKey) {
  key(keyC, true, modifier::command | modifier::control);
  key(keyC, false);
  EXPECT_EQ(strokes(), (Strokes{pressed(control), pressed(c, withControl), released(c, withControl),
                                released(control, withControl)}));
}

TEST_F(KeyEventsTest, TheFunctionFlagIsNothing) {
  key(keyA, true, modifier::function);
  key(keyA, false, modifier::function);
  EXPECT_EQ(strokes(), (Strokes{pressed(a), released(a)}));
  EXPECT_FALSE(leaves.events.post(KeyEvent{.keyCode = functionKey, .down = true}));
}

TEST_F(KeyEventsTest, AModifierStaysDownUntilTheLastKeyThatNeedsItGoes) {
  key(keyC, true, modifier::command);
  key(keyV, true, modifier::command);
  key(keyC, false, modifier::command);
  EXPECT_EQ(strokes(),
            (Strokes{pressed(control), pressed(c, withControl), pressed(v, withControl), released(c, withControl)}));
  key(keyV, false, modifier::command);
  EXPECT_EQ(strokes(), (Strokes{released(v, withControl), released(control, withControl)}));
}

TEST_F(KeyEventsTest, AShiftKeyThatIsHeldStaysDownBesideTheShiftFlag) {
  key(shiftKey, true, modifier::shift);
  key(keyA, true, modifier::shift);
  key(keyA, false, modifier::shift);
  EXPECT_EQ(strokes(), (Strokes{pressed(shift), pressed(a, withShift), released(a, withShift)}));
  key(shiftKey, false);
  EXPECT_EQ(strokes(), (Strokes{released(shift, withShift)}));
}

TEST_F(KeyEventsTest, TheShiftFlagOutlivesTheShiftKey) {
  key(shiftKey, true);
  key(keyA, true, modifier::shift);
  key(shiftKey, false);
  EXPECT_EQ(strokes(), (Strokes{pressed(shift), pressed(a, withShift)}));
  key(keyA, false);
  EXPECT_EQ(strokes(), (Strokes{released(a, withShift), released(shift, withShift)}));
}

TEST_F(KeyEventsTest, ASecondPressRepeatsAndOneReleaseEndsIt) {
  key(keyA, true);
  key(keyA, true);
  key(keyA, true);
  EXPECT_EQ(strokes(), (Strokes{pressed(a), released(a), pressed(a), released(a), pressed(a)}));
  key(keyA, false);
  EXPECT_EQ(strokes(), Strokes{released(a)});
}

TEST_F(KeyEventsTest, ARepeatHoldsTheModifiersThatItNames) {
  key(keyA, true, modifier::control);
  key(keyA, true, modifier::control);
  EXPECT_EQ(strokes(),
            (Strokes{pressed(control), pressed(a, withControl), released(a, withControl), pressed(a, withControl)}));
  key(keyA, true, modifier::shift);
  EXPECT_EQ(strokes(),
            (Strokes{released(control, withControl), pressed(shift), released(a, withShift), pressed(a, withShift)}));
  key(keyA, false);
  EXPECT_EQ(strokes(), (Strokes{released(a, withShift), released(shift, withShift)}));
}

TEST_F(KeyEventsTest, ModifiersDoNotRepeat) {
  key(shiftKey, true);
  key(shiftKey, true);
  key(capsLockKey, true);
  key(capsLockKey, true);
  EXPECT_EQ(strokes(), (Strokes{pressed(shift), pressed(capsLock, withShift)}));
}

TEST_F(KeyEventsTest, AnUnwantedModifierIsLiftedForAKeyAndPutBack) {
  key(shiftKey, true);
  pressUnwanted(keyA, {shiftKey});
  EXPECT_EQ(strokes(), (Strokes{pressed(shift), released(shift, withShift), pressed(a)}));
  key(keyA, false);
  EXPECT_EQ(strokes(), (Strokes{released(a), pressed(shift)}));
  key(shiftKey, false);
  EXPECT_EQ(strokes(), Strokes{released(shift, withShift)});
}

TEST_F(KeyEventsTest, AModifierThatIsHeldAndNotUnwantedCounts) {
  key(shiftKey, true);
  key(keyA, true);
  key(keyA, false);
  EXPECT_EQ(strokes(), (Strokes{pressed(shift), pressed(a, withShift), released(a, withShift)}));
}

TEST_F(KeyEventsTest, AnUnwantedModifierThatTheKeyNamesItselfStays) {
  key(shiftKey, true);
  EXPECT_TRUE(leaves.events.post(
      KeyEvent{.keyCode = keyA, .down = true, .flags = modifier::shift, .unwantedKeys = {shiftKey}}));
  key(keyA, false);
  EXPECT_EQ(strokes(), (Strokes{pressed(shift), pressed(a, withShift), released(a, withShift)}));
}

TEST_F(KeyEventsTest, AModifierThatGoesWithOneKeyIsLiftedForAnother) {
  key(keyC, true, modifier::command);
  key(keyA, true);
  EXPECT_EQ(strokes(),
            (Strokes{pressed(control), pressed(c, withControl), released(control, withControl), pressed(a)}));
  key(keyA, false);
  EXPECT_EQ(strokes(), (Strokes{released(a), pressed(control)}));
  key(keyC, false);
  EXPECT_EQ(strokes(), (Strokes{released(c, withControl), released(control, withControl)}));
}

TEST_F(KeyEventsTest, ALiftedModifierThatIsReleasedMeanwhileIsNotPutBack) {
  key(shiftKey, true);
  pressUnwanted(keyA, {shiftKey});
  key(shiftKey, false);
  key(keyA, false);
  EXPECT_EQ(strokes(), (Strokes{pressed(shift), released(shift, withShift), pressed(a), released(a)}));
}

TEST_F(KeyEventsTest, ALiftedModifierCountsAgainWhenItIsPressedAnewOrNamed) {
  key(shiftKey, true);
  pressUnwanted(keyA, {shiftKey});
  strokes();
  key(shiftKey, true);
  EXPECT_EQ(strokes(), Strokes{pressed(shift)});
  key(keyA, false);
  pressUnwanted(keyA, {shiftKey});
  strokes();
  key(keyV, true, modifier::shift);
  EXPECT_EQ(strokes(), (Strokes{pressed(shift), pressed(v, withShift)}));
  key(keyV, false);
  key(keyA, false);
  key(shiftKey, false);
  EXPECT_EQ(strokes(), (Strokes{released(v, withShift), released(a, withShift), released(shift, withShift)}));
}

TEST_F(KeyEventsTest, NoModifierIsLiftedForAModifier) {
  key(keyC, true, modifier::command);
  key(shiftKey, true);
  EXPECT_EQ(strokes(), (Strokes{pressed(control), pressed(c, withControl), pressed(shift, withControl)}));
}

TEST_F(KeyEventsTest, WhatTheUserHoldsIsNotLifted) {
  LeafSet keyboard(desktop);
  keyboard.events.post(KeyEvent{.keyCode = shiftKey, .down = true});
  keyboard.events.flush();
  ASSERT_TRUE(witness.waitForCount(1));
  witness.forget();
  pressUnwanted(keyA, {shiftKey});
  EXPECT_EQ(strokes(), Strokes{pressed(a, withShift)});
}

TEST_F(KeyEventsTest, WhatOthersStillHoldStaysDownButForItsModifiers) {
  key(keyA, true);
  key(keyA, true, modifier::shift);
  EXPECT_EQ(strokes(), (Strokes{pressed(a), pressed(shift), released(a, withShift), pressed(a, withShift)}));
  EXPECT_TRUE(leaves.events.post(KeyEvent{.keyCode = keyA, .down = false, .staysDown = true}));
  EXPECT_EQ(strokes(), Strokes{released(shift, withShift)});
  key(keyA, false);
  EXPECT_EQ(strokes(), Strokes{released(a)});
}

TEST_F(KeyEventsTest, AReleaseLeavesTheUsersOwnKeysAlone) {
  LeafSet keyboard(desktop);
  keyboard.events.post(KeyEvent{.keyCode = keyA, .down = true});
  keyboard.events.flush();
  ASSERT_TRUE(witness.waitForCount(1));
  witness.forget();
  key(keyA, false);
  key(keyA, false);
  EXPECT_EQ(strokes(), Strokes{});
}

TEST_F(KeyEventsTest, ASecondReleaseIsNothing) {
  key(keyA, true);
  key(keyA, false);
  key(keyA, false);
  key(keyA, true);
  EXPECT_EQ(strokes(), (Strokes{pressed(a), released(a), pressed(a)}));
}

TEST_F(KeyEventsTest, ManyThreadsLeaveNoKeyDown) {
  std::vector<std::future<void>> phones;
  for (std::uint16_t phone = 0; phone < 4; ++phone) {
    phones.push_back(std::async(std::launch::async, [this, phone] {
      for (int i = 0; i < 200; ++i) {
        key(phone, true, modifier::command | modifier::shift);
        key(phone, false);
        leaves.events.flush();
      }
    }));
  }
  for (auto& phone : phones) phone.get();
  const auto all = delivered();
  EXPECT_GE(all.size(), 4u * 200 * 2);
  key(keyV, true);
  EXPECT_EQ(strokes(), Strokes{pressed(v)}) << "no modifier is left down";
}

}  // namespace
}  // namespace orvel
