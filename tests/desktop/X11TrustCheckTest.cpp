#include "desktop/LeafFixture.hpp"
#include "platform/linux/x11/X11Connection.hpp"

#include <string>
#include <vector>

namespace orvel {
namespace {

using X11TrustCheckTest = LeafFixture;

TEST_F(X11TrustCheckTest, AServerWithXTestIsTrusted) {
  EXPECT_TRUE(leaves.trust.isTrusted());
}

TEST(X11TrustCheckWithoutXTestTest, NothingCanBePostedAndTheConnectionLives) {
  const VirtualDesktop desktop({"-extension", "XTEST"});
  LeafSet leaves(desktop);
  EXPECT_FALSE(leaves.trust.isTrusted());
  EXPECT_FALSE(leaves.events.post(MouseEvent{.position = Point{10, 10}}));
  EXPECT_FALSE(leaves.events.post(ScrollEvent{.wheel1 = 400}));
  EXPECT_FALSE(leaves.events.post(KeyEvent{.keyCode = 0, .down = true}));
  leaves.events.flush();
  EXPECT_TRUE(leaves.events.pointerLocation());
  EXPECT_TRUE(leaves.connection().isAlive());
}

TEST(X11TrustCheckWithoutXTestTest, SaysWhatToDoAndOffersNoButtonThatWouldDoNothing) {
  const VirtualDesktop desktop({"-extension", "XTEST"});
  const LeafSet leaves(desktop);
  const PermissionNotice notice = leaves.trust.notice();
  EXPECT_EQ(notice.heading, "The X server takes no input");
  EXPECT_EQ(notice.explanation,
            "The X server does not let Orvel move the pointer: switch its XTEST extension on in the server's "
            "configuration, then log in again.");
  EXPECT_EQ(notice.action, "");
}

TEST(X11TrustCheckOfALostServerTest, IsNotTrustedAndSaysSo) {
  VirtualDesktop desktop;
  LeafSet leaves(desktop);
  desktop.killServer();
  ASSERT_TRUE(leaves.waitForEnd());
  EXPECT_FALSE(leaves.trust.isTrusted());
  EXPECT_EQ(leaves.trust.notice().heading, "The desktop has ended");
  EXPECT_EQ(leaves.trust.notice().action, "");
}

TEST(XwaylandOutputsTest, ServersThatDoNotSayItAreKnownByTheNamesOfTheirOutputs) {
  using Names = std::vector<std::string>;
  EXPECT_TRUE(areXwaylandOutputs(Names{"XWAYLAND0"}));
  EXPECT_TRUE(areXwaylandOutputs(Names{"XWAYLAND0", "XWAYLAND12"}));
  EXPECT_TRUE(areXwaylandOutputs(Names{"Virtual-1", "XWAYLAND1"}));
  EXPECT_TRUE(areXwaylandOutputs(Names{})) << "Xwayland without a monitor";
  EXPECT_FALSE(areXwaylandOutputs(Names{"", "screen", "eDP-1", "HDMI-1", "VNC-0", "xwayland", "WAYLAND0"}));
}

TEST_F(X11TrustCheckTest, AnXServerOfItsOwnIsNotXwayland) {
  EXPECT_FALSE(leaves.connection().isXwayland());
}

}  // namespace
}  // namespace orvel
