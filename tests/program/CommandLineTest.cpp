#include "desktop/QRReader.hpp"
#include "program/HostProcess.hpp"

#include <boost/json/parse.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <sstream>
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

/// The drawn lines of a terminal as a picture: a half block is one pixel of light above or below.
std::string pictureOf(const std::string& text, const std::filesystem::path& file) {
  constexpr std::size_t scale = 4;
  std::vector<std::string> rows;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    std::string upper;
    std::string lower;
    for (std::size_t i = 0; i < line.size(); i += line[i] == ' ' ? 1 : 3) {
      const std::string block = line.substr(i, line[i] == ' ' ? 1 : 3);
      upper += block == "█" || block == "▀" ? '0' : '1';
      lower += block == "█" || block == "▄" ? '0' : '1';
    }
    rows.insert(rows.end(), {upper, lower});
  }
  std::ofstream picture(file);
  picture << "P1 " << rows.front().size() * scale << ' ' << rows.size() * scale << '\n';
  for (std::size_t row = 0; row < rows.size() * scale; ++row) {
    for (const char pixel : rows[row / scale]) {
      for (std::size_t i = 0; i < scale; ++i) picture << pixel << ' ';
    }
    picture << '\n';
  }
  return file.string();
}

TEST_F(CommandLineTest, PairDrawsTheInvitationForACamera) {
  if (geteuid() != 0) GTEST_SKIP() << "a network of its own is for root to make";
  const std::string network =
      "ip link add left type veth peer name right && ip addr add 192.0.2.7/24 dev left && ip link set left up && "
      "ip link set right up && exec " ORVEL_PROGRAM " --pair";
  ChildProcess program({.command = {"unshare", "--net", "sh", "-c", network},
                        .environment = {{"HOME", home.path().string()}, {"XDG_CONFIG_HOME", std::nullopt}}});
  ASSERT_EQ(program.waitForExit(), 0) << program.output();
  EXPECT_THAT(program.output(), StartsWith("Address: 192.0.2.7 port 8787\nCode:    "));
  const std::size_t drawing = program.output().find("\n\n") + 2;
  const auto scanned = QRReader::textIn(pictureOf(program.output().substr(drawing), home.path() / "terminal.pbm"));
  ASSERT_TRUE(scanned);
  const auto payload = boost::json::parse(*scanned).as_object();
  EXPECT_EQ(payload.at("host"), "192.0.2.7");
  std::string code(payload.at("token").as_string());
  for (const std::size_t dash : {4U, 9U, 14U}) code.insert(dash, "-");
  EXPECT_THAT(program.output(), HasSubstr("Code:    " + code + "\n"));
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
