#include "program/HostProcess.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace orvel {
namespace {

using testing::ContainsRegex;
using testing::HasSubstr;
using testing::StartsWith;

struct CommandLineTest : testing::Test {
  struct Ended {
    std::optional<int> exitCode;
    std::string output;
  };

  Ended run(std::vector<std::string> arguments, ChildProcess::Environment environment = {}) {
    arguments.insert(arguments.begin(), ORVEL_PROGRAM);
    environment["HOME"] = home.path();
    environment["XDG_CONFIG_HOME"] = std::nullopt;
    ChildProcess program({.command = arguments, .environment = environment});
    const auto exitCode = program.waitForExit();
    return {exitCode, program.output()};
  }

  TemporaryFolder home;
};

TEST_F(CommandLineTest, HelpAndVersionNeedNoDesktop) {
  const auto help = run({"--help"}, {{"DISPLAY", std::nullopt}});
  EXPECT_EQ(help.exitCode, 0);
  EXPECT_THAT(help.output, StartsWith("Usage: orvel"));
  const auto version = run({"--version"}, {{"DISPLAY", std::nullopt}});
  EXPECT_EQ(version.exitCode, 0);
  EXPECT_THAT(version.output, ContainsRegex("^orvel [0-9]+\\.[0-9]+\\.[0-9]+\n$"));
}

TEST_F(CommandLineTest, PairShowsTheSameCodeEachTime) {
  const auto first = run({"--pair"}, {{"DISPLAY", std::nullopt}});
  EXPECT_EQ(first.exitCode, 0);
  EXPECT_THAT(first.output, ContainsRegex("Code: +[A-Z2-9]{4}-[A-Z2-9]{4}-[A-Z2-9]{4}-[A-Z2-9]{4}\n"));
  EXPECT_EQ(run({"--pair"}, {{"DISPLAY", std::nullopt}}).output, first.output);
}

TEST_F(CommandLineTest, PairShowsNoCodeThatCannotBeKept) {
  std::filesystem::create_directories(home.path() / ".config/orvel/orvel.conf");
  const auto ended = run({"--pair"});
  EXPECT_EQ(ended.exitCode, 1);
  EXPECT_THAT(ended.output, HasSubstr("cannot be stored"));
  EXPECT_THAT(ended.output, testing::Not(HasSubstr("Code:")));
}

TEST_F(CommandLineTest, AnUnknownOptionIsAnError) {
  const auto ended = run({"--frobnicate"});
  EXPECT_EQ(ended.exitCode, 2);
  EXPECT_THAT(ended.output, HasSubstr("unknown option '--frobnicate'"));
  EXPECT_EQ(run({"--pair", "--help"}).exitCode, 2);
}

TEST_F(CommandLineTest, WithoutADesktopItSaysSo) {
  const auto none = run({}, {{"DISPLAY", std::nullopt}});
  EXPECT_EQ(none.exitCode, 1);
  EXPECT_THAT(none.output, HasSubstr("Orvel needs a desktop"));
  const auto wrong = run({}, {{"DISPLAY", ":4711"}});
  EXPECT_EQ(wrong.exitCode, 1);
  EXPECT_THAT(wrong.output, HasSubstr(":4711"));
}

}  // namespace
}  // namespace orvel
