#include "tools/PhoneOptions.hpp"

#include <algorithm>
#include <charconv>
#include <string_view>

namespace orvel::phone {
namespace {

/// Takes over one option with its value; returns what is wrong with it, or nothing.
std::string take(PhoneOptions& options, std::string_view name, const std::string& value) {
  if (name == "--host") {
    options.host = value;
  } else if (name == "--token") {
    options.token = value;
  } else if (name == "--device") {
    options.device = value;
  } else if (name == "--port") {
    const char* const end = value.data() + value.size();
    const auto [stop, error] = std::from_chars(value.data(), end, options.port);
    if (error != std::errc() || stop != end || options.port == 0) {
      return "\"--port\" needs a number from 1 to 65535, not \"" + value + "\"";
    }
  } else {
    return "there is no option \"" + std::string(name) + "\"";
  }
  return "";
}

}  // namespace

std::variant<PhoneOptions, std::string> parseArguments(std::span<const std::string> arguments,
                                                       const std::optional<std::string>& environmentToken) {
  PhoneOptions options;
  options.token = environmentToken.value_or("");
  while (!arguments.empty() && arguments.front().starts_with("-")) {
    const std::string& argument = arguments.front();
    arguments = arguments.subspan(1);
    if (argument == "--help" || argument == "-h") {
      options.help = true;
      return options;
    }
    const auto equals = argument.find('=');
    const std::string_view name = std::string_view(argument).substr(0, equals);
    std::string value;
    if (equals != std::string::npos) {
      value = argument.substr(equals + 1);
    } else if (!arguments.empty()) {
      value = arguments.front();
      arguments = arguments.subspan(1);
    }
    if (auto mistake = take(options, name, value); !mistake.empty()) return mistake;
    if (value.empty()) return "\"" + std::string(name) + "\" needs a value";
  }
  options.token = normalizedToken(options.token);
  auto script = parseScript(arguments);
  if (auto* mistake = std::get_if<std::string>(&script)) return std::move(*mistake);
  options.steps = std::get<std::vector<Step>>(std::move(script));
  if (options.steps.empty()) return "there is no command";
  if (options.token.empty() && std::ranges::any_of(options.steps, needsPairing)) {
    return "there is no token: give one with --token or in the environment variable ORVEL_TOKEN";
  }
  return options;
}

std::string normalizedToken(std::string_view written) {
  std::string token;
  for (const char letter : written) {
    if (letter == '-') continue;
    token += letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
  }
  return token;
}

}  // namespace orvel::phone
