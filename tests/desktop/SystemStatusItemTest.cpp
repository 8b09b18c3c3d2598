#include "desktop/StatusNotifierStandIn.hpp"
#include "desktop/TrayHost.hpp"
#include "desktop/WindowManager.hpp"
#include "platform/linux/GLibPointer.hpp"

#include <gio/gio.h>
#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <cstddef>
#include <sstream>
#include <string>
#include <thread>

namespace orvel {
namespace {

/// Longer than two clicks may lie apart that count as a double one.
constexpr Milliseconds afterDoubleClick{500};

/// A program with the icon and nothing else.
class IconProgram {
 public:
  explicit IconProgram(const SessionBus& bus) : IconProgram(bus.environment()) {}
  explicit IconProgram(const ChildProcess::Environment& environment)
      : process_({.command = {ORVEL_TEST_STATUS_ITEM}, .environment = environment}) {
    EXPECT_TRUE(process_.waitForOutput("ready\n")) << process_.output();
  }

  void send(const std::string& command) { process_.write(command + "\n"); }

  /// Whether it is shown, and where, in its own words.
  std::string state() {
    const std::size_t heard = process_.output().size();
    send("ask");
    const Deadline deadline(timeout);
    while (process_.output().find('\n', heard) == std::string::npos && deadline.left() > Milliseconds(0)) {
      std::this_thread::sleep_for(Milliseconds(5));
    }
    const auto& output = process_.output();
    return output.substr(heard, output.find('\n', heard) - heard);
  }

  /// Waits until it is shown, or is not. False when that does not come in time.
  bool waitForState(const std::string& word) {
    const Deadline deadline(timeout);
    while (!state().starts_with(word)) {
      if (deadline.left() == Milliseconds(0)) return false;
      std::this_thread::sleep_for(Milliseconds(20));
    }
    return true;
  }

  /// How often it has been activated, once that is `expected` or more, or when that does not come in time.
  int activations(int expected) {
    const Deadline deadline(timeout);
    while (countOf("activated\n") < expected && deadline.left() > Milliseconds(0)) {
      std::this_thread::sleep_for(Milliseconds(5));
    }
    std::this_thread::sleep_for(lull);
    return countOf("activated\n");
  }

  ChildProcess& process() { return process_; }

 private:
  int countOf(const std::string& words) {
    int count = 0;
    const auto& output = process_.output();
    for (auto at = output.find(words); at != std::string::npos; at = output.find(words, at + 1)) ++count;
    return count;
  }

  ChildProcess process_;
};

struct IconTest : testing::Test {
  Picture picture() const { return DesktopView(desktop.display()).picture(); }

  VirtualDesktop desktop;
  SessionBus bus{desktop};
  WindowManager windowManager{desktop};
};

struct SystemStatusItemTest : IconTest, testing::WithParamInterface<TrayHost::Kind> {
  TrayHost tray{desktop, bus, {.kind = GetParam()}};
};

TEST_P(SystemStatusItemTest, IsShownInTheTrayUntilTheProgramEnds) {
  tray.start();
  IconProgram program(bus);
  ASSERT_TRUE(tray.waitForIcon());
  EXPECT_TRUE(program.waitForState("shown"));
  program.process().closeInput();
  EXPECT_EQ(program.process().waitForExit(), 0) << program.process().output();
  EXPECT_TRUE(tray.waitForNoIcon());
}

TEST_P(SystemStatusItemTest, HearsEachClickOnce) {
  tray.start();
  IconProgram program(bus);
  EXPECT_TRUE(tray.clickIcon());
  EXPECT_EQ(program.activations(1), 1);
  std::this_thread::sleep_for(afterDoubleClick);
  EXPECT_TRUE(tray.clickIcon(TrayHost::Button::middle));
  EXPECT_EQ(program.activations(2), 2);
}

TEST_P(SystemStatusItemTest, TakesADoubleClickForOne) {
  tray.start();
  IconProgram program(bus);
  EXPECT_TRUE(tray.clickIcon(TrayHost::Button::left, 2));
  EXPECT_EQ(program.activations(1), 1);
}

TEST_P(SystemStatusItemTest, ShowsAnotherSymbol) {
  tray.start();
  IconProgram program(bus);
  ASSERT_TRUE(tray.waitForIcon());
  const Picture before = picture();
  program.send("rays");
  const Deadline deadline(timeout);
  while (picture() == before && deadline.left() > Milliseconds(0)) std::this_thread::sleep_for(Milliseconds(10));
  EXPECT_NE(picture(), before);
}

TEST_P(SystemStatusItemTest, ComesOnceTheTrayComes) {
  IconProgram program(bus);
  EXPECT_TRUE(program.state().starts_with("hidden"));
  tray.start();
  EXPECT_TRUE(tray.waitForIcon());
  EXPECT_TRUE(program.waitForState("shown"));
}

TEST_P(SystemStatusItemTest, ComesBackWithTheTray) {
  tray.start();
  IconProgram program(bus);
  for (int round = 0; round < 2; ++round) {
    ASSERT_TRUE(tray.waitForIcon());
    tray.stop();
    EXPECT_TRUE(program.waitForState("hidden"));
    tray.start();
  }
  ASSERT_TRUE(tray.waitForIcon());
  EXPECT_TRUE(program.waitForState("shown"));
  EXPECT_TRUE(tray.clickIcon());
  EXPECT_EQ(program.activations(1), 1);
}

INSTANTIATE_TEST_SUITE_P(Hosts, SystemStatusItemTest,
                         testing::Values(TrayHost::Kind::tint2, TrayHost::Kind::lxqt, TrayHost::Kind::xfce),
                         [](const auto& test) { return std::string(nameOf(test.param)); });

TEST_F(IconTest, ToldItsPlaceWhereTheTrayTells) {
  TrayHost tray(desktop, bus, {.kind = TrayHost::Kind::tint2});
  tray.start();
  IconProgram program(bus);
  const auto seen = tray.waitForIcon();
  ASSERT_TRUE(seen);
  std::istringstream words(program.state());
  std::string word;
  Rect reported;
  words >> word >> word >> reported.origin.x >> reported.origin.y >> reported.size.width >> reported.size.height;
  EXPECT_EQ(reported.unionWith(*seen), reported) << program.state();
  EXPECT_LE(reported.size.width, TrayHost::thickness);
}

/// The server may give the windows of the new one the names of the old one's.
TEST_F(IconTest, ComesBackWhenTheTrayWasReplacedBehindABusyProgram) {
  TrayHost tray(desktop, bus, {.kind = TrayHost::Kind::tint2});
  tray.start();
  IconProgram program(bus);
  ASSERT_TRUE(tray.waitForIcon());
  program.process().signal(SIGSTOP);
  tray.stop();
  tray.start();
  program.process().signal(SIGCONT);
  EXPECT_TRUE(tray.waitForIcon());
}

TEST_F(IconTest, HearsTheRightButton) {
  TrayHost tray(desktop, bus, {.kind = TrayHost::Kind::tint2});
  tray.start();
  IconProgram program(bus);
  EXPECT_TRUE(tray.clickIcon(TrayHost::Button::right));
  EXPECT_EQ(program.activations(1), 1);
}

TEST_F(IconTest, IsNowhereWithoutATray) {
  IconProgram program(bus);
  program.send("rays");
  EXPECT_EQ(program.state(), "hidden at nowhere");
}

TEST_F(IconTest, DoesWithoutABus) {
  TrayHost tray(desktop, bus, {.kind = TrayHost::Kind::tint2});
  tray.start();
  auto environment = desktop.environment();
  environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=" + (desktop.home() / "no-bus").string();
  IconProgram program(environment);
  EXPECT_TRUE(tray.waitForIcon());
}

TEST_F(IconTest, DoesNotWaitForABusThatHangs) {
  TrayHost tray(desktop, bus, {.kind = TrayHost::Kind::tint2});
  tray.start();
  bus.signal(SIGSTOP);
  IconProgram program(bus);
  EXPECT_TRUE(tray.waitForIcon());
  EXPECT_TRUE(program.waitForState("shown"));
  bus.signal(SIGCONT);
}

TEST_F(IconTest, DoesNotWaitForATrayThatHangs) {
  TrayHost tray(desktop, bus, {.kind = TrayHost::Kind::lxqt});
  tray.start();
  tray.signal(SIGSTOP);
  IconProgram program(bus);
  std::this_thread::sleep_for(lull);
  EXPECT_EQ(program.state(), "hidden at nowhere");
  tray.signal(SIGCONT);
  EXPECT_TRUE(tray.waitForIcon());
}

TEST_F(IconTest, IsEmbeddedWhenTheTrayThatHungHasGone) {
  TrayHost embedding(desktop, bus, {.kind = TrayHost::Kind::tint2, .edge = TrayHost::Edge::top});
  TrayHost hanging(desktop, bus, {.kind = TrayHost::Kind::lxqt});
  embedding.start();
  hanging.start();
  hanging.signal(SIGSTOP);
  IconProgram program(bus);
  std::this_thread::sleep_for(lull);
  EXPECT_EQ(program.state(), "hidden at nowhere");
  hanging.stop();
  EXPECT_TRUE(embedding.waitForIcon());
}

TEST_F(IconTest, IsEmbeddedWhenNobodyShowsItems) {
  TrayHost tray(desktop, bus, {.kind = TrayHost::Kind::tint2});
  tray.start();
  const StatusNotifierStandIn watcher(bus, "(<false>,)");
  IconProgram program(bus);
  std::this_thread::sleep_for(lull);
  EXPECT_EQ(program.state(), "hidden at nowhere");
  EXPECT_TRUE(tray.waitForIcon());
}

TEST_F(IconTest, IsAnItemWhereBothAreShown) {
  TrayHost embedding(desktop, bus, {.kind = TrayHost::Kind::tint2, .edge = TrayHost::Edge::top});
  TrayHost notifying(desktop, bus, {.kind = TrayHost::Kind::lxqt});
  embedding.start();
  notifying.start();
  IconProgram program(bus);
  EXPECT_TRUE(notifying.waitForIcon());
  EXPECT_FALSE(embedding.iconPlace());
}

TEST_F(IconTest, OutlivesAWatcherThatMakesNoSense) {
  for (const char* answer : {"(<@u 7>,)", "(<{'a': <[<'deep'>]>}>,)", "('no variant',)", "()"}) {
    StatusNotifierStandIn watcher(bus, answer);
    IconProgram program(bus);
    ASSERT_TRUE(watcher.waitForQuestions(1));
    watcher.signalOften(10'000);
    ASSERT_TRUE(watcher.waitForQuestions(2));
    EXPECT_NE(program.state(), "") << answer;
    EXPECT_LT(watcher.questions(), 500) << answer;
  }
}

}  // namespace
}  // namespace orvel
