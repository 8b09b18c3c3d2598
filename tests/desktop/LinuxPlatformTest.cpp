#include "base/Clock.hpp"
#include "base/WorkerThreads.hpp"
#include "catalog/Workspace.hpp"
#include "desktop/Timeout.hpp"
#include "desktop/VirtualDesktop.hpp"
#include "desktop/X11Witness.hpp"
#include "input/Displays.hpp"
#include "input/EventPoster.hpp"
#include "input/PointerDriver.hpp"
#include "input/TrustCheck.hpp"
#include "platform/Platform.hpp"
#include "session/Advertiser.hpp"
#include "session/Machine.hpp"
#include "session/Preferences.hpp"
#include "session/SocketMonitor.hpp"

#include <gtest/gtest.h>

#include <cstdlib>
#include <future>
#include <memory>
#include <semaphore>
#include <string>
#include <variant>

namespace orvel {
namespace {

std::variant<std::unique_ptr<Platform>, std::string> openAt(const std::string& display) {
  setenv("DISPLAY", display.c_str(), 1);
  return openPlatform();
}

TEST(LinuxPlatformTest, WithoutADesktopItSaysSo) {
  unsetenv("DISPLAY");
  unsetenv("WAYLAND_DISPLAY");
  EXPECT_EQ(
      missingDesktop(),
      "Orvel needs a desktop to work on: there is none here, as neither DISPLAY nor WAYLAND_DISPLAY is set. Start "
      "it from the applications menu or from a terminal of your desktop.");
  setenv("WAYLAND_DISPLAY", "wayland-0", 1);
  EXPECT_EQ(
      missingDesktop(),
      "Orvel needs a desktop to work on: it does not work on Wayland yet, and this is a Wayland session. Log in to "
      "an X11 session.");
  setenv("DISPLAY", ":4095", 1);
  EXPECT_EQ(missingDesktop(), "Orvel needs a desktop to work on: no X display answers at \":4095\".");
  const auto missing = openAt(":4095");
  ASSERT_TRUE(std::holds_alternative<std::string>(missing));
  EXPECT_EQ(std::get<std::string>(missing), "Orvel needs a desktop to work on: no X display answers at \":4095\".");
}

TEST(LinuxPlatformTest, PreferencesAndMachineNeedNoDesktop) {
  unsetenv("DISPLAY");
  EXPECT_NE(openPreferences(), nullptr);
  EXPECT_NE(openMachine(), nullptr);
}

TEST(LinuxPlatformTest, ADesktopThatIsThereIsNotMissed) {
  const VirtualDesktop desktop;
  setenv("DISPLAY", desktop.display().c_str(), 1);
  EXPECT_EQ(missingDesktop(), std::nullopt);
}

struct OpenPlatformTest : testing::Test {
  void SetUp() override {
    auto opened = openAt(desktop.display());
    ASSERT_TRUE(std::holds_alternative<std::unique_ptr<Platform>>(opened)) << std::get<std::string>(opened);
    platform = std::get<std::unique_ptr<Platform>>(std::move(opened));
  }

  VirtualDesktop desktop;
  std::unique_ptr<Platform> platform;
};

TEST_F(OpenPlatformTest, ItsLeavesWorkTogether) {
  EXPECT_TRUE(platform->trust().isTrusted());
  EXPECT_EQ(platform->displays().layout()->screens.size(), 1u);
  EXPECT_TRUE(platform->events().pointerLocation());
  EXPECT_FALSE(platform->machine().hostName().empty());

  X11Witness witness(desktop.display());
  std::counting_semaphore<> activations{0};
  platform->workspace().observeActivation([&] { activations.release(); });
  witness.setRootProperty("_NET_ACTIVE_WINDOW", 17);
  EXPECT_TRUE(activations.try_acquire_for(timeout));
  platform = nullptr;
}

TEST_F(OpenPlatformTest, TheEndOfTheDesktopIsToldOfOnce) {
  std::promise<void> ended;  // throws when it is set twice
  platform->observeEnd([&] { ended.set_value(); });
  desktop.killServer();
  EXPECT_EQ(ended.get_future().wait_for(timeout), std::future_status::ready);
  EXPECT_FALSE(platform->trust().isTrusted());
  platform = nullptr;
}

TEST_F(OpenPlatformTest, AnEndBeforeAnybodyObservesIsToldOfAtOnce) {
  desktop.killServer();
  const Deadline deadline(timeout);
  while (platform->trust().isTrusted() && deadline.left() > Milliseconds(0)) {
  }
  std::promise<void> ended;
  platform->observeEnd([&] { ended.set_value(); });
  EXPECT_EQ(ended.get_future().wait_for(timeout), std::future_status::ready);
  platform = nullptr;
}

TEST_F(OpenPlatformTest, AQuietEndIsNotToldOf) {
  bool ended = false;
  platform->observeEnd([&] { ended = true; });
  platform = nullptr;
  EXPECT_FALSE(ended);
}

TEST_F(OpenPlatformTest, RelativeMotionArrivesThroughTheRealClock) {
  SystemClock clock;
  WorkerThreads threads;
  const auto queue = threads.makeSerialQueue();
  X11Witness witness(desktop.display());
  const auto [x, y] = witness.pointer();
  PointerDriver pointer(platform->events(), platform->displays(), clock, *queue);
  pointer.moveRelative(30, -12);
  EXPECT_TRUE(witness.waitFor([&, left = x, top = y](const auto& inputs) {
    return !inputs.empty() && inputs.back().x == left + 30 && inputs.back().y == top - 12;
  }));
  pointer.button(0, true, 1);
  platform->events().flush();
  pointer.moveRelative(5, 5);
  EXPECT_TRUE(witness.waitFor([](const auto& inputs) {
    return inputs.back().kind == X11Witness::Kind::motion && inputs.back().state == XCB_BUTTON_MASK_1;
  })) << "motion while the left button is held is a drag";
  pointer.releaseAll();
  EXPECT_TRUE(witness.waitFor([](const auto& inputs) {
    return inputs.back().kind == X11Witness::Kind::buttonUp && inputs.back().detail == 1;
  }));
  threads.finish();
}

}  // namespace
}  // namespace orvel
