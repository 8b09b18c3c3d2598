#include "tools/PhoneOptions.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace orvel::phone {
namespace {

using testing::HasSubstr;
using testing::SizeIs;
using Words = std::vector<std::string>;

PhoneOptions optionsOf(const Words& words, const std::optional<std::string>& environmentToken = std::nullopt) {
  const auto parsed = parseArguments(words, environmentToken);
  if (const auto* mistake = std::get_if<std::string>(&parsed)) ADD_FAILURE() << *mistake;
  const auto* options = std::get_if<PhoneOptions>(&parsed);
  return options ? *options : PhoneOptions();
}

std::string mistakeIn(const Words& words) {
  const auto parsed = parseArguments(words, std::nullopt);
  const auto* mistake = std::get_if<std::string>(&parsed);
  return mistake ? *mistake : "";
}

TEST(PhoneOptions, HasDefaults) {
  const auto options = optionsOf({"ping"});
  EXPECT_EQ(options.host, "127.0.0.1");
  EXPECT_EQ(options.port, 8787);
  EXPECT_EQ(options.device, "orvel-phone");
  EXPECT_FALSE(options.help);
  EXPECT_THAT(options.steps, SizeIs(1));
}

TEST(PhoneOptions, TakesEveryOptionInBothSpellings) {
  const auto options =
      optionsOf({"--host", "desk.local", "--port=9000", "--token", "ABCD", "--device=My phone", "move", "-1", "-2"});
  EXPECT_EQ(options.host, "desk.local");
  EXPECT_EQ(options.port, 9000);
  EXPECT_EQ(options.token, "ABCD");
  EXPECT_EQ(options.device, "My phone");
  EXPECT_THAT(options.steps, SizeIs(1));
}

TEST(PhoneOptions, PrefersTheTokenOfTheArguments) {
  EXPECT_EQ(optionsOf({"pair"}, "abcd-efgh").token, "ABCDEFGH");
  EXPECT_EQ(optionsOf({"--token", "jkmn", "pair"}, "abcd-efgh").token, "JKMN");
}

TEST(PhoneOptions, WantsATokenOnlyWhereItIsNeeded) {
  EXPECT_EQ(optionsOf({"ping", "wait", "1"}).token, "");
  EXPECT_THAT(mistakeIn({"ping", "click", "left"}), HasSubstr("ORVEL_TOKEN"));
  EXPECT_THAT(mistakeIn({"--token", "--", "pair"}), HasSubstr("ORVEL_TOKEN"));
}

TEST(PhoneOptions, HelpNeedsNothingElse) {
  EXPECT_TRUE(optionsOf({"--help"}).help);
  EXPECT_TRUE(optionsOf({"--port", "1", "-h", "nonsense"}).help);
}

TEST(PhoneOptions, SaysWhatIsWrong) {
  EXPECT_THAT(mistakeIn({}), HasSubstr("no command"));
  EXPECT_THAT(mistakeIn({"--prot", "1", "ping"}), HasSubstr("\"--prot\""));
  EXPECT_THAT(mistakeIn({"-x", "ping"}), HasSubstr("\"-x\""));
  EXPECT_THAT(mistakeIn({"--host"}), HasSubstr("\"--host\""));
  EXPECT_THAT(mistakeIn({"--host=", "ping"}), HasSubstr("\"--host\""));
  EXPECT_THAT(mistakeIn({"pong"}), HasSubstr("\"pong\""));
  for (const char* port : {"0", "65536", "-1", "x", "80x"}) {
    EXPECT_THAT(mistakeIn({"--port", port, "ping"}), HasSubstr("\"" + std::string(port) + "\"")) << port;
  }
}

TEST(PhoneOptions, ATokenMayBeWrittenInGroupsAndInAnyCase) {
  EXPECT_EQ(normalizedToken("ABCD-EFGH-JKMN-PQRS"), "ABCDEFGHJKMNPQRS");
  EXPECT_EQ(normalizedToken("abcdefghjkmn2345"), "ABCDEFGHJKMN2345");
}

}  // namespace
}  // namespace orvel::phone
