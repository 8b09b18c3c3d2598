#include "app/CommandLine.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace orvel {
namespace {

using CommandLine::Command;
using testing::HasSubstr;
using testing::VariantWith;

std::variant<Command, std::string> parse(const std::vector<const char*>& arguments) {
  return CommandLine::parse(arguments);
}

TEST(CommandLineTest, EachOptionIsACommand) {
  EXPECT_THAT(parse({}), VariantWith<Command>(Command::run));
  EXPECT_THAT(parse({"--background"}), VariantWith<Command>(Command::runInBackground));
  EXPECT_THAT(parse({"--show"}), VariantWith<Command>(Command::showPanel));
  EXPECT_THAT(parse({"--pair"}), VariantWith<Command>(Command::pair));
  EXPECT_THAT(parse({"--version"}), VariantWith<Command>(Command::printVersion));
  EXPECT_THAT(parse({"--help"}), VariantWith<Command>(Command::printHelp));
}

TEST(CommandLineTest, WhatIsNotKnownIsNamed) {
  EXPECT_THAT(parse({"--frobnicate"}), VariantWith<std::string>("unknown option '--frobnicate'"));
  EXPECT_THAT(parse({"-x"}), VariantWith<std::string>("unknown option '-x'"));
  EXPECT_THAT(parse({"--sho"}), VariantWith<std::string>("unknown option '--sho'"));
  EXPECT_THAT(parse({"show"}), VariantWith<std::string>("unexpected argument 'show'"));
  EXPECT_THAT(parse({""}), VariantWith<std::string>("unexpected argument ''"));
  EXPECT_THAT(parse({"--frobnicate", "--show"}), VariantWith<std::string>("unknown option '--frobnicate'"));
}

TEST(CommandLineTest, OneOptionIsEnough) {
  EXPECT_THAT(parse({"--show", "--show"}), VariantWith<std::string>("only one option at a time"));
}

TEST(CommandLineTest, TheUsageNamesEveryOption) {
  for (const char* option : {"--background", "--show", "--pair", "--version", "--help"}) {
    EXPECT_THAT(std::string(CommandLine::usage), HasSubstr(option));
  }
}

}  // namespace
}  // namespace orvel
