#include "desktop/LeafFixture.hpp"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>

namespace orvel {
namespace {

using SystemTrustCheckTest = LeafFixture;

TEST_F(SystemTrustCheckTest, AServerWithXTestIsTrusted) {
  EXPECT_TRUE(leaves.trust.isTrusted());
  EXPECT_FALSE(leaves.trust.prompt());
}

TEST(SystemTrustCheckWithoutXTestTest, NothingCanBePostedAndTheConnectionLives) {
  const VirtualDesktop desktop({"-extension", "XTEST"});
  LeafSet leaves(desktop);
  EXPECT_FALSE(leaves.trust.isTrusted());
  EXPECT_FALSE(leaves.events.post(MouseEvent{.position = {10, 10}}));
  EXPECT_FALSE(leaves.events.post(ScrollEvent{.wheel1 = 400}));
  EXPECT_FALSE(leaves.events.post(KeyEvent{.keyCode = 0, .down = true}));
  leaves.events.flush();
  EXPECT_TRUE(leaves.events.pointerLocation());
  EXPECT_TRUE(leaves.connection().isAlive());
}

/// Desktops whose programs write down how they were called.
struct SettingsTest : LeafFixture {
  SettingsTest() {
    std::filesystem::create_directory(programs);
    setenv("PATH", programs.c_str(), 1);
    setenv("CALLS", calls.c_str(), 1);
  }
  ~SettingsTest() override {
    setenv("PATH", path.c_str(), 1);
    unsetenv("CALLS");
    unsetenv("XDG_CURRENT_DESKTOP");
  }

  void install(const std::string& name) const {
    const std::filesystem::path program = programs / name;
    std::ofstream(program) << "#!/bin/sh\necho \"" << name
                           << " $*\" > \"$CALLS.new\"\n/bin/mv \"$CALLS.new\" \"$CALLS\"\n";
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
  }

  bool openOn(const char* currentDesktop) {
    setenv("XDG_CURRENT_DESKTOP", currentDesktop, 1);
    return leaves.trust.openSettings();
  }

  /// The line that the started program has written.
  std::string call() const {
    const Deadline deadline(patience);
    while (!std::filesystem::exists(calls) && deadline.left() > Milliseconds(0)) std::this_thread::yield();
    std::string line;
    std::ifstream file(calls);
    std::getline(file, line);
    std::filesystem::remove(calls);
    return line;
  }

  const std::string path = std::getenv("PATH");
  const std::filesystem::path programs = desktop.home() / "bin";
  const std::filesystem::path calls = desktop.home() / "calls";
};

TEST_F(SettingsTest, EachDesktopHasItsOwn) {
  for (const char* program : {"gnome-control-center", "systemsettings", "xfce4-accessibility-settings",
                              "mate-at-properties", "cinnamon-settings"}) {
    install(program);
  }
  EXPECT_TRUE(openOn("GNOME"));
  EXPECT_EQ(call(), "gnome-control-center universal-access");
  EXPECT_TRUE(openOn("ubuntu:GNOME"));
  EXPECT_EQ(call(), "gnome-control-center universal-access");
  EXPECT_TRUE(openOn("KDE"));
  EXPECT_EQ(call(), "systemsettings kcm_access");
  EXPECT_TRUE(openOn("XFCE"));
  EXPECT_EQ(call(), "xfce4-accessibility-settings ");
  EXPECT_TRUE(openOn("MATE"));
  EXPECT_EQ(call(), "mate-at-properties ");
  EXPECT_TRUE(openOn("X-Cinnamon"));
  EXPECT_EQ(call(), "cinnamon-settings universal-access");
}

TEST_F(SettingsTest, TheOlderNameOfKDEsSettingsIsKnown) {
  install("systemsettings5");
  EXPECT_TRUE(openOn("KDE"));
  EXPECT_EQ(call(), "systemsettings5 kcm_access");
}

TEST_F(SettingsTest, AMissingProgramOrAnUnknownDesktopIsSaid) {
  EXPECT_FALSE(openOn("GNOME"));
  install("gnome-control-center");
  EXPECT_FALSE(openOn("i3"));
  EXPECT_FALSE(openOn(""));
}

}  // namespace
}  // namespace orvel
