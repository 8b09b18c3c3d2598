#include "desktop/TemporaryFolder.hpp"
#include "fakes/FakePanelDesktop.hpp"
#include "fakes/RecordingDesktop.hpp"
#include "fakes/ScriptedScreen.hpp"
#include "platform/linux/LinuxPlatform.hpp"
#include "platform/linux/appearance/DesktopTheme.hpp"
#include "platform/linux/applications/DesktopWindows.hpp"
#include "platform/linux/tray/EmbeddingTray.hpp"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <cstdlib>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace orvel {
namespace {

/// A desktop that reports its windows when a test says so, and gives no tokens.
class QuietDesktop final : public DesktopWindows, public ActivationTokens {
 public:
  void observeActivation(std::function<void()> handler) override { activated = std::move(handler); }
  std::optional<std::vector<ManagedWindow>> read() override { return windows; }
  void activate(const std::vector<WindowID>& ids) override { brought = ids; }
  void close(const std::vector<WindowID>& ids) override { closed = ids; }

  std::string issue(const std::string&, const std::string&) override { return {}; }
  void revoke(const std::string&) override {}

  std::optional<std::vector<ManagedWindow>> windows;
  std::function<void()> activated;
  std::vector<WindowID> brought;
  std::vector<WindowID> closed;
};

/// What the platform has asked of its backend, which outlives it here.
struct BackendLog {
  RecordingDesktop desktop;
  ScriptedScreen screen;
  FakeForeground foreground;
  FakePressWatch presses;
  QuietDesktop quiet;
  std::function<void()> ended;
  bool hasThread = true;
  int stops = 0;
  int typingStops = 0;
  int disconnections = 0;
};

/// A backend that needs no display server.
class FakeBackend final : public Backend {
 public:
  explicit FakeBackend(BackendLog& log) : log_(log) {}

  CaptureService& capture() override { return log_.screen; }
  Displays& displays() override { return log_.desktop; }
  EventPoster& events() override { return log_.desktop; }
  Foreground& foreground() override { return log_.foreground; }
  PressWatch& presses() override { return log_.presses; }
  ScreenRecordingAccess& screenRecording() override { return log_.screen; }
  TrustCheck& trust() override { return log_.desktop; }
  ActivationTokens& activationTokens() override { return log_.quiet; }
  ThemeSettings& theme() override { return theme_; }
  DesktopWindows& windows() override { return log_.quiet; }
  std::optional<WindowAtPoint> windowAt(Point) override { return std::nullopt; }
  std::unique_ptr<EmbeddingTray> makeEmbeddingTray(std::function<void()>) override { return nullptr; }
  bool listen(std::function<void()> ended) override {
    log_.ended = std::move(ended);
    return log_.hasThread;
  }
  /// What an event would still have brought just before is dispatched first.
  void stopListening() override {
    if (theme_.changed) theme_.changed();
    if (log_.quiet.activated) log_.quiet.activated();
    ++log_.stops;
  }
  void stopTyping() override { ++log_.typingStops; }
  void disconnect() override { ++log_.disconnections; }

 private:
  /// Says nothing.
  class NoTheme final : public ThemeSettings {
   public:
    DesktopTheme theme() const override { return {}; }
    void observe(std::function<void()> handler) override { changed = std::move(handler); }

    std::function<void()> changed;
  };

  BackendLog& log_;
  NoTheme theme_;
};

/// A window of the program Editor. The first alone is one that people switch to.
ManagedWindow windowOf(WindowID id, WindowID owner) {
  ManagedWindow window;
  window.id = id;
  window.owner = owner;
  window.process = 1;
  window.className = "Editor";
  window.isApplicationWindow = true;
  window.isInTaskbar = owner == 0;
  return window;
}

constexpr BackendKind absent{.isPresent = [] { return false; },
                             .missing = []() -> std::optional<std::string> { return std::nullopt; },
                             .toolkitPlatform = "absent",
                             .open = nullptr,
                             .inputObstacle = nullptr};
constexpr BackendKind silent{.isPresent = [] { return true; },
                             .missing = []() -> std::optional<std::string> { return "it is silent."; },
                             .toolkitPlatform = "silent",
                             .open = nullptr,
                             .inputObstacle = nullptr};
constexpr BackendKind answering{.isPresent = [] { return true; },
                                .missing = []() -> std::optional<std::string> { return std::nullopt; },
                                .toolkitPlatform = "answering",
                                .open = nullptr,
                                .inputObstacle = nullptr};

std::string chosenOf(const std::vector<BackendKind>& kinds) {
  const auto chosen = chooseBackend(kinds);
  return chosen ? chosen->toolkitPlatform : "none";
}

TEST(BackendChoiceTest, TheFirstThatAnswersIsTaken) {
  EXPECT_EQ(chosenOf({absent, silent, answering, silent}), "answering");
}

TEST(BackendChoiceTest, OneThatDoesNotAnswerSaysWhy) {
  EXPECT_EQ(chosenOf({absent, silent, silent}), "silent");
}

TEST(BackendChoiceTest, WhatIsNotThereIsNotTaken) {
  EXPECT_EQ(chosenOf({absent}), "none");
  EXPECT_EQ(chosenOf({}), "none");
}

TEST(BackendChoiceTest, ALoneOneIsNotAsked) {
  BackendKind lone = answering;
  lone.missing = nullptr;
  EXPECT_EQ(chosenOf({absent, lone}), "answering");
}

struct LinuxLeavesTest : testing::Test {
  LinuxLeavesTest() {
    for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_DATA_DIRS"}) {
      setenv(name, home.path().c_str(), 1);
    }
    setenv("DBUS_SESSION_BUS_ADDRESS", "disabled:", 1);
    platform =
        std::make_unique<LinuxPlatform>(std::make_unique<FakeBackend>(log), rlimit{RLIM_INFINITY, RLIM_INFINITY});
  }

  TemporaryFolder home;
  BackendLog log;
  int activations = 0;
  std::unique_ptr<LinuxPlatform> platform;
};

TEST_F(LinuxLeavesTest, TakesFromTheBackendWhatNeedsADisplayServer) {
  EXPECT_EQ(&platform->events(), &log.desktop);
  EXPECT_EQ(&platform->displays(), &log.desktop);
  EXPECT_EQ(&platform->trust(), &log.desktop);
  EXPECT_EQ(&platform->capture(), &log.screen);
  EXPECT_EQ(&platform->screenRecording(), &log.screen);
  EXPECT_EQ(&platform->foreground(), &log.foreground);
  EXPECT_EQ(&platform->presses(), &log.presses);
}

TEST_F(LinuxLeavesTest, ADesktopMayReportNoWindows) {
  EXPECT_EQ(platform->workspace().runningApplications(), std::nullopt);
  EXPECT_FALSE(platform->accessibility().elementAt({10, 10}));
  RunningApplication unknown;
  unknown.identifier = "app";
  platform->workspace().activate(unknown);
  platform->workspace().terminate(unknown);
  EXPECT_TRUE(log.quiet.brought.empty());
  EXPECT_TRUE(log.quiet.closed.empty());
}

TEST_F(LinuxLeavesTest, ProgramsAreKnownByTheWindowsOfTheBackend) {
  log.quiet.windows = {windowOf(7, 0), windowOf(8, 7)};
  const auto running = platform->workspace().runningApplications();
  ASSERT_TRUE(running);
  ASSERT_EQ(running->size(), 1u);
  EXPECT_EQ(running->front().identifier, "Editor");
  EXPECT_TRUE(running->front().isRegular);
  platform->workspace().activate(running->front());
  EXPECT_EQ(log.quiet.brought, (std::vector<WindowID>{7, 8}));
  platform->workspace().terminate(running->front());
  EXPECT_EQ(log.quiet.closed, (std::vector<WindowID>{7, 8}));
}

TEST_F(LinuxLeavesTest, TheObserverOfActivationsIsTheBackends) {
  platform->workspace().observeActivation([&] { ++activations; });
  log.quiet.activated();
  EXPECT_EQ(activations, 1);
}

TEST_F(LinuxLeavesTest, WithoutATrayThereIsNoIcon) {
  int argumentCount = 1;
  std::string name = "test";
  char* arguments[2] = {name.data(), nullptr};
  const QCoreApplication application(argumentCount, arguments);
  std::optional<bool> hasPlace;
  platform->statusItem().show(Symbol::cursorArrow, {.activated = [] {}, .decided = [&](bool has) { hasPlace = has; }});
  for (int turns = 0; !hasPlace && turns < 1000; ++turns) {
    QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
  }
  EXPECT_EQ(hasPlace, false);
  EXPECT_FALSE(platform->statusItem().isShown());
  EXPECT_EQ(platform->statusItem().place(), std::nullopt);
  platform = nullptr;  // before the application, as in the program
}

TEST_F(LinuxLeavesTest, TheEndOfTheServerIsReportedOnce) {
  int ends = 0;
  platform->observeEnd([&] { ++ends; });
  ASSERT_TRUE(platform->listen());
  log.ended();
  log.ended();
  EXPECT_EQ(ends, 1);
}

TEST_F(LinuxLeavesTest, ALateObserverHearsOfTheEndAtOnce) {
  int ends = 0;
  ASSERT_TRUE(platform->listen());
  log.ended();
  platform->observeEnd([&] { ++ends; });
  EXPECT_EQ(ends, 1);
}

TEST_F(LinuxLeavesTest, ABackendWithoutAThreadCannotListen) {
  log.hasThread = false;
  EXPECT_FALSE(platform->listen());
}

TEST_F(LinuxLeavesTest, TheBackendStopsBeforeTheLeavesGo) {
  platform->stopTyping();
  EXPECT_EQ(log.typingStops, 1);
  platform->giveUp();
  EXPECT_EQ(log.disconnections, 1);
  EXPECT_EQ(log.stops, 0);
  platform->workspace().observeActivation([&] { ++activations; });
  platform = nullptr;
  EXPECT_EQ(log.stops, 1);
  EXPECT_EQ(activations, 1) << "what was on its way came while they were there";
}

}  // namespace
}  // namespace orvel
