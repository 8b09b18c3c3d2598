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
  keys.releaseAll();
  EXPECT_EQ(desktop.all<KeyEvent>(), (std::vector<KeyEvent>{{.keyCode = 8, .down = false}}));
  keys.releaseAll();
  EXPECT_EQ(desktop.posted.size(), 1u) << "once";
}

TEST(HeldKeys, AKeyThatTheDesktopRefusedIsNotHeld) {
  RecordingDesktop desktop;
  desktop.accepts = false;
  HeldKeys keys(desktop);
  keys.post({.keyCode = 8, .down = true});
  desktop.accepts = true;
  keys.releaseAll();
  EXPECT_TRUE(desktop.posted.empty());
}

}  // namespace
}  // namespace orvel
