#include "desktop/LeafFixture.hpp"
#include "fakes/FakeClock.hpp"
#include "input/PointerDriver.hpp"

#include <string>
#include <thread>

namespace orvel {
namespace {

struct X11DisplaysTest : LeafFixture {
  bool setMonitor(const std::string& name, const std::string& geometry, const std::string& output) {
    return desktop.run({"xrandr", "--setmonitor", name, geometry, output}) == 0;
  }

  /// Waits until the leaf reports so many screens, or gives up.
  std::shared_ptr<const DisplayLayout> layoutOf(std::size_t screens) {
    const Deadline deadline(timeout);
    auto layout = leaves.displays.layout();
    while (layout->screens.size() != screens && deadline.left() > Milliseconds(0)) {
      std::this_thread::yield();
      layout = leaves.displays.layout();
    }
    return layout;
  }
};

constexpr Rect wholeScreen{{0, 0}, {1280, 800}};

TEST_F(X11DisplaysTest, OneMonitorIsTheWholeScreen) {
  const auto layout = leaves.displays.layout();
  EXPECT_EQ(layout->main, wholeScreen);
  EXPECT_EQ(layout->screens, std::vector{wholeScreen});
  EXPECT_EQ(leaves.displays.screenSize(), (Size{1280, 800}));
}

TEST_F(X11DisplaysTest, TheLayoutIsMadeAnewOnlyForAChange) {
  const auto before = leaves.displays.layout();
  EXPECT_EQ(leaves.displays.layout(), before);
  ASSERT_TRUE(setMonitor("LEFT", "600/160x500/130+0+0", "screen"));
  ASSERT_TRUE(setMonitor("RIGHT", "400/106x700/185+600+0", "none"));
  const auto after = layoutOf(2);
  EXPECT_EQ(before->screens, std::vector{wholeScreen}) << "who holds a layout keeps it as it was";
  EXPECT_EQ(after->main, (Rect{{0, 0}, {600, 500}}));
  EXPECT_EQ(after->screens, (std::vector<Rect>{{{0, 0}, {600, 500}}, {{600, 0}, {400, 700}}}));
}

TEST_F(X11DisplaysTest, ThePrimaryMonitorIsTheMainOne) {
  ASSERT_TRUE(setMonitor("LEFT", "600/160x500/130+0+0", "screen"));
  ASSERT_TRUE(setMonitor("*RIGHT", "400/106x700/185+600+0", "none"));
  const auto layout = layoutOf(2);
  EXPECT_EQ(layout->main, (Rect{{600, 0}, {400, 700}}));
  ASSERT_EQ(layout->screens.size(), 2u);
  EXPECT_EQ(layout->screens[0], layout->main);
}

TEST_F(X11DisplaysTest, ThePointerIsClampedToTheRectangleAroundAllMonitors) {
  FakeClock clock;
  FakeExecutor queue{clock};
  const PointerDriver pointer(leaves.events, leaves.displays, clock, queue);
  ASSERT_TRUE(setMonitor("LEFT", "600/160x500/130+0+0", "screen"));
  ASSERT_TRUE(setMonitor("RIGHT", "400/106x700/185+600+0", "none"));
  ASSERT_EQ(layoutOf(2)->screens.size(), 2u);
  EXPECT_EQ(pointer.clampToDisplays({5000, 5000}), (Point{999, 699}));
  EXPECT_EQ(pointer.clampToDisplays({100, 650}), (Point{100, 650})) << "a gap between monitors is inside";
}

TEST(X11DisplaysWithoutRandRTest, TheScreenIsTheOnlyDisplay) {
  const VirtualDesktop desktop({"-extension", "RANDR"});
  LeafSet leaves(desktop);
  EXPECT_EQ(leaves.displays.layout()->main, wholeScreen);
  EXPECT_EQ(leaves.displays.layout()->screens, std::vector{wholeScreen});
  EXPECT_TRUE(leaves.connection().isAlive());
}

}  // namespace
}  // namespace orvel
