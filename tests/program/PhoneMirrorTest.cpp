#include "program/ProgramFixture.hpp"

#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <iterator>
#include <string>
#include <vector>

namespace orvel {
namespace {

using testing::AllOf;
using testing::ContainsRegex;
using testing::HasSubstr;
using testing::Not;

/// The mirror as somebody at a terminal has it.
struct PhoneMirrorTest : ProgramFixture {
  ChildProcess::Program phone(const std::vector<std::string>& words) const {
    std::vector<std::string> command{ORVEL_PHONE_PROGRAM, "--token", code};
    command.insert(command.end(), words.begin(), words.end());
    return {.command = command, .environment = desktop.environment()};
  }

  bool isSharing() { return host.process().waitForOutput("Sharing your screen\n"); }
  bool isNotSharingAnyMore() { return host.process().waitForOutput("No longer sharing your screen\n"); }
};

TEST_F(PhoneMirrorTest, SavesTheFramesAndTellsHowOldTheyWere) {
  const ChildProcess clock({.command = {ORVEL_CLOCK_PROGRAM}, .environment = desktop.environment()});
  const auto folder = desktop.home() / "frames";
  ChildProcess mirror(phone({"mirror", "2", "--width", "640", "--fps", "10", "--save", folder.string()}));
  EXPECT_EQ(mirror.waitForExit(), 0);
  EXPECT_THAT(mirror.output(), AllOf(HasSubstr("screen: 640x400\n"), ContainsRegex("age: [0-9]+ ms at the median")));
  EXPECT_THAT(mirror.output(), Not(HasSubstr("left out")));
  EXPECT_GE(std::distance(std::filesystem::directory_iterator(folder), {}), 2);
  EXPECT_TRUE(isNotSharingAnyMore());
}

TEST_F(PhoneMirrorTest, CtrlCEndsItWithAReport) {
  ChildProcess mirror(phone({"mirror", "wait", "600"}));
  ASSERT_TRUE(isSharing());
  mirror.signal(SIGINT);
  EXPECT_EQ(mirror.waitForExit(), 0);
  EXPECT_THAT(mirror.output(), HasSubstr("frames: "));
  EXPECT_TRUE(isNotSharingAnyMore());
}

TEST_F(PhoneMirrorTest, MayHaveAWindow) {
  ChildProcess mirror(phone({"mirror", "1", "--window"}));
  EXPECT_EQ(mirror.waitForExit(), 0);
  EXPECT_THAT(mirror.output(), ContainsRegex("frames: ([2-9]|[0-9][0-9])")) << "as the window itself is a change";
}

TEST_F(PhoneMirrorTest, SaysThatThereIsNoDesktopForAWindow) {
  auto program = phone({"mirror", "--window"});
  for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) program.environment[name] = std::nullopt;
  ChildProcess mirror(program);
  EXPECT_EQ(mirror.waitForExit(), 1);
  EXPECT_THAT(mirror.output(), HasSubstr("there is no desktop for a window"));
}

}  // namespace
}  // namespace orvel
