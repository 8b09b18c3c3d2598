#pragma once

#include <span>
#include <string>
#include <string_view>
#include <variant>

namespace orvel::CommandLine {

enum class Command { run, runInBackground, showPanel, pair, printVersion, printHelp };

extern const std::string_view usage;

/// What the program is asked to do by its arguments, which are those behind its name; or what is wrong with them, in
/// words for the user. Threads: any.
std::variant<Command, std::string> parse(std::span<const char* const> arguments);

}  // namespace orvel::CommandLine
