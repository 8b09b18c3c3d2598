#pragma once

#include "tools/PhoneScript.hpp"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace orvel::phone {

/// What the small phone's command line asks for.
struct PhoneOptions {
  std::string host = "127.0.0.1";
  std::uint16_t port = 8787;
  std::string token;
  std::string device = "orvel-phone";
  bool help = false;
  std::vector<Step> steps;
};

/// The options and commands in `arguments` (the program's name not among them), or a sentence that says what is wrong
/// with them. `environmentToken` counts when the arguments name no token. Threads: any.
std::variant<PhoneOptions, std::string> parseArguments(std::span<const std::string> arguments,
                                                       const std::optional<std::string>& environmentToken);

/// A token as people write it, in groups or not and in any case, in the form that the proof is made with.
std::string normalizedToken(std::string_view written);

}  // namespace orvel::phone
