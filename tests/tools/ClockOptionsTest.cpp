#include "tools/ClockOptions.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <variant>
#include <vector>

namespace orvel::phone {
namespace {

using testing::HasSubstr;
using Words = std::vector<std::string>;

ClockOptions optionsOf(const Words& words) {
  const auto parsed = parseClockArguments(words);
  if (const auto* mistake = std::get_if<std::string>(&parsed)) ADD_FAILURE() << *mistake;
  const auto* options = std::get_if<ClockOptions>(&parsed);
  return options != nullptr ? *options : ClockOptions();
}

std::string mistakeIn(const Words& words) {
  const auto parsed = parseClockArguments(words);
  const auto* mistake = std::get_if<std::string>(&parsed);
  return mistake != nullptr ? *mistake : "";
}

TEST(ClockOptions, HasDefaults) {
  const auto options = optionsOf({});
  EXPECT_EQ(options.rate, 60);
  EXPECT_EQ(options.noiseHeight(), 0);
  EXPECT_EQ(options.blockSize(), 32);
  EXPECT_EQ(options.seconds, std::nullopt);
  EXPECT_FALSE(options.help);
}

TEST(ClockOptions, TakesEveryOption) {
  const auto options =
      optionsOf({"--geometry", "1280x720+10+20", "--rate", "29.97", "--noise", "0.5", "--seconds", "1.5"});
  EXPECT_EQ(options.width, 1280);
  EXPECT_EQ(options.height, 720);
  EXPECT_EQ(options.x, 10);
  EXPECT_EQ(options.y, 20);
  EXPECT_EQ(options.rate, 29.97);
  EXPECT_EQ(options.noiseHeight(), 360);
  EXPECT_EQ(options.blockSize(), 42);
  EXPECT_EQ(options.seconds, 1.5);
}

TEST(ClockOptions, APlaceMayBeLeftOut) {
  EXPECT_EQ(optionsOf({"--geometry", "480x300"}).blockSize(), 16);
}

TEST(ClockOptions, HelpNeedsNothingElse) {
  EXPECT_TRUE(optionsOf({"--help"}).help);
  EXPECT_TRUE(optionsOf({"--rate", "1", "-h", "nonsense"}).help);
}

TEST(ClockOptions, NamesWhatIsWrong) {
  EXPECT_THAT(mistakeIn({"--frobnicate", "1"}), HasSubstr("\"--frobnicate\""));
  EXPECT_THAT(mistakeIn({"60"}), HasSubstr("\"60\""));
  for (const char* option : {"--geometry", "--rate", "--noise", "--seconds"}) {
    EXPECT_THAT(mistakeIn({option}), HasSubstr("\"" + std::string(option) + "\" needs"));
  }
  for (const char* geometry : {"960", "960x", "960x540+", "960x540+0", "960x540+0+0x", "0x540", "960x99999", "axb",
                               "960x540-1+0", "960x540+-1+0"}) {
    EXPECT_THAT(mistakeIn({"--geometry", geometry}), HasSubstr("\"" + std::string(geometry) + "\""));
  }
  for (const char* number : {"x", "1x", "-1", "nan", "inf", "1e9"}) {
    for (const char* option : {"--rate", "--noise", "--seconds"}) {
      EXPECT_THAT(mistakeIn({option, number}), HasSubstr("\"" + std::string(number) + "\"")) << option;
    }
  }
}

TEST(ClockOptions, TheTimeNeedsRoom) {
  EXPECT_EQ(optionsOf({"--geometry", "240x56"}).blockSize(), 8);
  EXPECT_THAT(mistakeIn({"--geometry", "239x56"}), HasSubstr("240x56"));
  EXPECT_THAT(mistakeIn({"--geometry", "240x55"}), HasSubstr("240x56"));
  EXPECT_THAT(mistakeIn({"--noise", "1"}), HasSubstr("240x56"));
}

}  // namespace
}  // namespace orvel::phone
