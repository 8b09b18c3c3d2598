#include "fakes/RecordingDesktop.hpp"
#include "input/HeldKeys.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace orvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr KeyEvent pressed(std::uint16_t keyCode) {
  return {.keyCode = keyCode, .down = true};
}

constexpr KeyEvent released(std::uint16_t keyCode) {
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

TEST_F(HeldKeysTest, AKeyThatTwoPhonesHoldGoesUpWhenTheLastLeaves) {
  keys.post(anna, pressed(8));
  keys.post(ben, pressed(8));
  strokes();
  keys.releaseAll(ben);
  EXPECT_THAT(strokes(), IsEmpty());
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

}  // namespace
}  // namespace orvel
