#include "app/CommandLine.hpp"

#include <algorithm>
#include <array>
#include <utility>

namespace orvel::CommandLine {
namespace {

constexpr std::array<std::pair<std::string_view, Command>, 5> options{{
    {"--background", Command::runInBackground},
    {"--help", Command::printHelp},
    {"--pair", Command::pair},
    {"--show", Command::showPanel},
    {"--version", Command::printVersion},
}};

}  // namespace

const std::string_view usage =
    "Usage: orvel [option]\n"
    "\n"
    "Lets a phone on the same network be this computer's mouse, keyboard, launcher and screen.\n"
    "Without an option it runs, with an icon in the tray or the menu bar that opens its panel;\n"
    "where there is neither it shows the panel in a window. If it runs already, that one shows\n"
    "its panel.\n"
    "\n"
    "  --background  run without showing the panel, as at login\n"
    "  --show        have the one that runs show its panel, and exit\n"
    "  --pair        print the address and the code that a phone needs, and exit\n"
    "  --version     print the version, and exit\n"
    "  --help        print this, and exit\n";

std::variant<Command, std::string> parse(std::span<const char* const> arguments) {
  if (arguments.empty()) return Command::run;
  const std::string_view first = arguments.front();
  const auto known = std::ranges::find(options, first, [](const auto& option) { return option.first; });
  if (known == options.end()) {
    return (first.starts_with('-') ? "unknown option '" : "unexpected argument '") + std::string(first) + "'";
  }
  if (arguments.size() > 1) return "only one option at a time";
  return known->second;
}

}  // namespace orvel::CommandLine
