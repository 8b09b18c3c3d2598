#include "tools/ClockOptions.hpp"

#include "tools/DecimalNumber.hpp"
#include "tools/TimeStrip.hpp"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>

namespace orvel::phone {
namespace {

constexpr int smallestBlock = 8;
constexpr int longestSide = 16384;

/// Takes a number off the front of `text`.
bool takeNumber(std::string_view& text, int& number, int least, int most) {
  const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc()) return false;
  text.remove_prefix(static_cast<std::size_t>(stop - text.data()));
  return number >= least && number <= most;
}

bool takeLetter(std::string_view& text, char letter) {
  if (!text.starts_with(letter)) return false;
  text.remove_prefix(1);
  return true;
}

bool isNumber(std::string_view text, double& number, double least, double most) {
  const auto value = decimalNumber(text);
  if (!value || *value < least || *value > most) return false;
  number = *value;
  return true;
}

/// A size and a place as the desktop's programs take them: 960x540+0+0.
bool isGeometry(std::string_view text, ClockOptions& options) {
  const bool hasSize = takeNumber(text, options.width, 1, longestSide) && takeLetter(text, 'x') &&
                       takeNumber(text, options.height, 1, longestSide);
  if (!hasSize || text.empty()) return hasSize;
  return takeLetter(text, '+') && takeNumber(text, options.x, 0, longestSide) && takeLetter(text, '+') &&
         takeNumber(text, options.y, 0, longestSide) && text.empty();
}

/// Takes over one option with its value; returns what is wrong with it, or nothing.
std::string take(ClockOptions& options, const std::string& name, const std::string& value) {
  const auto needs = [&](const char* what) { return "\"" + name + "\" needs " + what + ", not \"" + value + "\""; };
  if (name == "--geometry") {
    return isGeometry(value, options) ? "" : needs("a size and a place such as 960x540+0+0");
  }
  if (name == "--rate") return isNumber(value, options.rate, 0.1, 1000) ? "" : needs("redraws a second (0.1 to 1000)");
  if (name == "--noise") return isNumber(value, options.noise, 0, 1) ? "" : needs("a share from 0 to 1");
  if (name == "--seconds") {
    return isNumber(value, options.seconds.emplace(), 0, 86400) ? "" : needs("seconds (0 to 86400)");
  }
  return "there is no option \"" + name + "\"";
}

}  // namespace

int ClockOptions::noiseHeight() const {
  return static_cast<int>(height * noise);
}

int ClockOptions::blockSize() const {
  return std::min(width / TimeStrip::columns, (height - noiseHeight()) / TimeStrip::rows);
}

std::variant<ClockOptions, std::string> parseClockArguments(std::span<const std::string> arguments) {
  ClockOptions options;
  for (; !arguments.empty(); arguments = arguments.subspan(2)) {
    const std::string& name = arguments.front();
    if (name == "--help" || name == "-h") {
      options.help = true;
      return options;
    }
    const std::string value = arguments.size() > 1 ? arguments[1] : "";
    if (auto mistake = take(options, name, value); !mistake.empty()) return mistake;
  }
  if (options.blockSize() < smallestBlock) {
    return "the time takes at least " + std::to_string(TimeStrip::columns * smallestBlock) + "x" +
           std::to_string(TimeStrip::rows * smallestBlock) + " pixels besides the noise";
  }
  return options;
}

}  // namespace orvel::phone
