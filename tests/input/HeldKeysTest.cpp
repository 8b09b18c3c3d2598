#include "fakes/RecordingDesktop.hpp"
#include "input/HeldKeys.hpp"

#include <gtest/gtest.h>

namespace orvel {
namespace {

TEST(HeldKeys, ReleasesWhatIsStillDown) {
  RecordingDesktop desktop;
  HeldKeys keys(desktop);
  keys.post({.keyCode = 8, .down = true, .flags = modifier::command});
  keys.post({.keyCode = 9, .down = true});
  keys.post({.keyCode = 9, .down = false});
  desktop.posted.clear();
  EXPECT_TRUE(keys.releaseAll());
  EXPECT_EQ(desktop.all<KeyEvent>(), (std::vector<KeyEvent>{{.keyCode = 8, .down = false}}));
  EXPECT_FALSE(keys.releaseAll());
}

TEST(HeldKeys, AKeyThatTheDesktopRefusedIsNotHeld) {
  RecordingDesktop desktop;
  desktop.accepts = false;
  HeldKeys keys(desktop);
  keys.post({.keyCode = 8, .down = true});
  desktop.accepts = true;
  EXPECT_FALSE(keys.releaseAll());
}

}  // namespace
}  // namespace orvel
