#include "desktop/LeafFixture.hpp"
#include "desktop/WaylandDesktop.hpp"
#include "platform/linux/SystemScreenRecordingAccess.hpp"

namespace orvel {
namespace {

/// The leaves on a Wayland desktop, whose Xwayland has XTEST but only a pointer that nobody sees.
struct XwaylandTest : testing::Test {
  WaylandDesktop desktop{WaylandDesktop::Kind::sway};
  X11Witness witness{desktop.display()};
  LeafSet leaves{desktop.display()};
};

TEST_F(XwaylandTest, NothingThatMayBeDoneThereIsClaimed) {
  EXPECT_TRUE(leaves.connection().isXwayland());
  EXPECT_FALSE(leaves.trust.isTrusted());
  EXPECT_EQ(
      leaves.trust.notice().explanation,
      "In a Wayland session Orvel can neither move the pointer nor type: log out, then log in to an X11 session.");
  EXPECT_EQ(leaves.trust.notice().action, "");
  SystemScreenRecordingAccess recording(leaves.connection());
  EXPECT_FALSE(recording.isGranted());
  EXPECT_EQ(
      recording.denial().onRequest,
      "Orvel cannot share the screen of a Wayland session yet. Log in to an X11 session on the computer, then try "
      "again.");
  EXPECT_EQ(recording.denial().onStart, recording.denial().onRequest);
}

/// Its outputs have no names to know it by then, and a monitor may come while the host runs.
TEST(XwaylandWithoutMonitorTest, IsKnownBeforeAMonitorComes) {
  const WaylandDesktop desktop(WaylandDesktop::Kind::sway, false);
  LeafSet leaves(desktop.display());
  EXPECT_TRUE(leaves.connection().isXwayland());
  EXPECT_FALSE(leaves.trust.isTrusted());
}

/// Whatever its callers do.
TEST_F(XwaylandTest, ThePosterPostsNothing) {
  EXPECT_FALSE(leaves.events.post(MouseEvent{.type = MouseEventType::moved, .position = {40, 50}}));
  EXPECT_FALSE(leaves.events.post(MouseEvent{.type = MouseEventType::leftDown, .position = {40, 50}}));
  EXPECT_FALSE(leaves.events.post(MouseEvent{.type = MouseEventType::leftUp, .position = {40, 50}}));
  EXPECT_FALSE(leaves.events.post(ScrollEvent{.wheel1 = 400, .wheel2 = 400}));
  EXPECT_FALSE(leaves.events.post(KeyEvent{.keyCode = 0, .down = true, .flags = modifier::shift}));
  EXPECT_FALSE(leaves.events.post(KeyEvent{.keyCode = 0, .down = false}));
  EXPECT_FALSE(leaves.events.post(SystemDefinedEvent{.data1 = 0xa00}));
  EXPECT_FALSE(leaves.events.post(TextEvent{.text = u"a\u20ac\u4e2d"}));
  leaves.events.flush();
  leaves.events.pointerLocation();  // the server has then taken all that was sent
  EXPECT_TRUE(witness.catchUp().empty()) << witness.inputs().front();
  witness.movePointer(40, 50);
  EXPECT_TRUE(witness.waitForCount(1)) << "the witness sees nothing at all";
}

}  // namespace
}  // namespace orvel
