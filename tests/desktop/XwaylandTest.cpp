#include "desktop/LeafFixture.hpp"
#include "desktop/WaylandDesktop.hpp"
#include "platform/linux/x11/X11Access.hpp"

#include <filesystem>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace orvel {
namespace {

/// The leaves on a Wayland desktop, whose Xwayland has XTEST but only a pointer that nobody sees.
struct XwaylandTest : testing::Test {
  explicit XwaylandTest(bool hasMonitor = true) : hasOutput(hasMonitor) {}

  void SetUp() override {
    if (const auto obstacle = WaylandDesktop::obstacle(WaylandDesktop::Kind::sway)) GTEST_SKIP() << *obstacle;
    desktop.emplace(WaylandDesktop::Kind::sway, hasOutput);
    leaves.emplace(desktop->display());
  }

  const bool hasOutput;
  std::optional<WaylandDesktop> desktop;
  std::optional<LeafSet> leaves;
};

TEST_F(XwaylandTest, NothingThatMayBeDoneThereIsClaimed) {
  EXPECT_TRUE(leaves->connection().isXwayland());
  EXPECT_FALSE(leaves->trust.isTrusted());
  EXPECT_EQ(
      leaves->trust.notice().explanation,
      "In a Wayland session Orvel can neither move the pointer nor type: log out, then log in to an X11 session.");
  EXPECT_EQ(leaves->trust.notice().action, "");
  X11ScreenRecordingAccess recording(leaves->connection());
  EXPECT_FALSE(recording.isGranted());
  EXPECT_EQ(
      recording.denial().onRequest,
      "Orvel cannot share the screen of a Wayland session yet. Log in to an X11 session on the computer, then try "
      "again.");
  EXPECT_EQ(recording.denial().onStart, recording.denial().onRequest);
}

/// Its outputs have no names to know it by then, and a monitor may come while the host runs.
struct XwaylandWithoutMonitorTest : XwaylandTest {
  XwaylandWithoutMonitorTest() : XwaylandTest(false) {}
};

TEST_F(XwaylandWithoutMonitorTest, IsKnownBeforeAMonitorComes) {
  EXPECT_TRUE(leaves->connection().isXwayland());
  EXPECT_FALSE(leaves->trust.isTrusted());
}

/// Whatever its callers do.
TEST_F(XwaylandTest, ThePosterPostsNothing) {
  X11Witness witness(desktop->display());
  EXPECT_FALSE(leaves->events.post(MouseEvent{.type = MouseEventType::moved, .position = Point{40, 50}}));
  EXPECT_FALSE(leaves->events.post(MouseEvent{.type = MouseEventType::leftDown, .position = Point{40, 50}}));
  EXPECT_FALSE(leaves->events.post(MouseEvent{.type = MouseEventType::leftUp, .position = Point{40, 50}}));
  EXPECT_FALSE(leaves->events.post(ScrollEvent{.wheel1 = 400, .wheel2 = 400}));
  EXPECT_FALSE(leaves->events.post(KeyEvent{.keyCode = 0, .down = true, .flags = modifier::shift}));
  EXPECT_FALSE(leaves->events.post(KeyEvent{.keyCode = 0, .down = false}));
  EXPECT_FALSE(leaves->events.post(SystemDefinedEvent{.data1 = 0xa00}));
  EXPECT_FALSE(leaves->events.post(TextEvent{.text = u"a\u20ac\u4e2d"}));
  leaves->events.flush();
  leaves->events.pointerLocation();  // the server has then taken all that was sent
  EXPECT_TRUE(witness.catchUp().empty()) << witness.inputs().front();
  witness.movePointer(40, 50);
  EXPECT_TRUE(witness.waitForCount(1)) << "the witness sees nothing at all";
}

/// What becomes of a test above on another system: a command that runs its argument there.
class XwaylandTestElsewhere {
 public:
  explicit XwaylandTestElsewhere(std::vector<std::string> command, const ChildProcess::Environment& environment = {})
      : process_({.command = withTest(std::move(command)), .environment = environment}) {}

  std::optional<int> exitCode() { return process_.waitForExit(); }
  const std::string& output() { return process_.output(); }

 private:
  static std::vector<std::string> withTest(std::vector<std::string> command) {
    command.push_back(std::filesystem::read_symlink("/proc/self/exe").string());
    command.emplace_back("--gtest_filter=XwaylandTest.NothingThatMayBeDoneThereIsClaimed");
    return command;
  }

  ChildProcess process_;
};

TEST(XwaylandTestElsewhereTest, IsSkippedWhereNamespacesAreRefused) {
  if (const auto obstacle = WaylandDesktop::obstacle(WaylandDesktop::Kind::sway)) GTEST_SKIP() << *obstacle;
  XwaylandTestElsewhere test({"unshare", "--user", "--map-root-user", "sh", "-c",
                              "echo 0 >/proc/sys/user/max_user_namespaces && exec \"$@\"", "sh"});
  EXPECT_EQ(test.exitCode(), 0);
  EXPECT_NE(test.output().find("this system does not let root make a user namespace"), std::string::npos)
      << test.output();
}

TEST(XwaylandTestElsewhereTest, IsNotSkippedForAnythingElse) {
  const TemporaryFolder empty;
  XwaylandTestElsewhere test({}, {{"PATH", empty.path().string()}});
  EXPECT_EQ(test.exitCode(), 1) << test.output();
}

}  // namespace
}  // namespace orvel
