#include "tools/PhoneScript.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <concepts>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>

namespace orvel::phone {
namespace {

constexpr double longestWait = 24 * 60 * 60;
constexpr int longestDragPart = 10;

template <class Number>
std::optional<Number> numberIn(std::string_view word) {
  Number number{};
  const char* const end = word.data() + word.size();
  const auto [stop, error] = std::from_chars(word.data(), end, number);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

/// Reads words from the front; after the first mistake it reads nothing more.
class WordReader {
 public:
  explicit WordReader(std::span<const std::string> words) : words_(words) {}

  bool atEnd() const { return words_.empty() || !mistake.empty(); }

  /// The command that the following words belong to.
  std::string_view command() {
    command_ = words_.front();
    words_ = words_.subspan(1);
    return command_;
  }

  template <class Number>
  Number number(const char* what, Number least, Number most) {
    const auto word = argument(what);
    if (!word) return {};
    const auto value = numberIn<Number>(*word);
    // A comparison that also refuses what is not a number.
    if (value && *value >= least && *value <= most) return *value;
    return refuse<Number>(*word, what);
  }

  std::int16_t number16(const char* what) {
    return number<std::int16_t>(what, std::numeric_limits<std::int16_t>::min(),
                                std::numeric_limits<std::int16_t>::max());
  }

  MouseButton button() {
    constexpr const char* what = "a button (left, right or middle)";
    const auto word = argument(what);
    if (!word) return {};
    if (*word == "left") return MouseButton::left;
    if (*word == "right") return MouseButton::right;
    if (*word == "middle") return MouseButton::middle;
    return refuse<MouseButton>(*word, what);
  }

  /// How many clicks; one when no number follows.
  std::uint8_t clickCount() {
    if (atEnd() || words_.front().find_first_not_of("0123456789") != std::string::npos) return 1;
    return number<std::uint8_t>("a number of clicks (1 to 255)", 1, 255);
  }

  KeyChord key() {
    constexpr const char* what = "a key";
    const auto word = argument(what);
    if (!word) return {};
    const auto chord = keyChord(*word);
    return chord ? *chord : refuse<KeyChord>(*word, what);
  }

  std::string mistake;

 private:
  std::optional<std::string_view> argument(const char* what) {
    if (!mistake.empty()) return std::nullopt;
    if (words_.empty()) {
      mistake = "\"" + std::string(command_) + "\" needs " + what;
      return std::nullopt;
    }
    const std::string_view word = words_.front();
    words_ = words_.subspan(1);
    return word;
  }

  template <class Value>
  Value refuse(std::string_view word, const char* what) {
    mistake = "\"" + std::string(command_) + "\" needs " + what + ", not \"" + std::string(word) + "\"";
    return {};
  }

  std::span<const std::string> words_;
  std::string_view command_;
};

constexpr const char* distance = "a whole number from -32768 to 32767";
constexpr const char* fraction = "a number from 0 to 1";

// Braced lists below are read from left to right, as the words stand.
const std::pair<std::string_view, Step (*)(WordReader&)> commands[] = {
    {"pair", [](WordReader&) -> Step { return step::Pair{}; }},
    {"move",
     [](WordReader& in) -> Step {
       return step::Move{in.number16(distance), in.number16(distance)};
     }},
    {"to",
     [](WordReader& in) -> Step {
       return step::MoveTo{in.number(fraction, 0.0, 1.0), in.number(fraction, 0.0, 1.0)};
     }},
    {"press",
     [](WordReader& in) -> Step {
       return step::Button{in.button(), true};
     }},
    {"release",
     [](WordReader& in) -> Step {
       return step::Button{in.button(), false};
     }},
    {"click",
     [](WordReader& in) -> Step {
       return step::Click{in.button(), in.clickCount()};
     }},
    {"drag",
     [](WordReader& in) -> Step {
       return step::Drag{in.number16(distance), in.number16(distance)};
     }},
    {"scroll",
     [](WordReader& in) -> Step {
       return step::Scroll{in.number16(distance), in.number16(distance)};
     }},
    {"key",
     [](WordReader& in) -> Step {
       return step::Key{in.key(), true, true};
     }},
    {"keydown",
     [](WordReader& in) -> Step {
       return step::Key{in.key(), true, false};
     }},
    {"keyup",
     [](WordReader& in) -> Step {
       return step::Key{in.key(), false, true};
     }},
    {"reveal", [](WordReader&) -> Step { return step::Reveal{}; }},
    {"ping", [](WordReader&) -> Step { return step::Ping{}; }},
    {"wait", [](WordReader& in) -> Step { return step::Wait{in.number("seconds (0 to 86400)", 0.0, longestWait)}; }},
};

}  // namespace

std::variant<std::vector<Step>, std::string> parseScript(std::span<const std::string> words) {
  WordReader reader(words);
  std::vector<Step> steps;
  while (!reader.atEnd()) {
    const std::string_view word = reader.command();
    const auto* command = std::ranges::find(commands, word, [](const auto& entry) { return entry.first; });
    if (command == std::end(commands)) return "there is no command \"" + std::string(word) + "\"";
    steps.push_back(command->second(reader));
  }
  if (!reader.mistake.empty()) return reader.mistake;
  return steps;
}

bool needsPairing(const Step& step) {
  return !std::holds_alternative<step::Ping>(step) && !std::holds_alternative<step::Wait>(step);
}

std::vector<step::Move> partsOf(const step::Drag& drag) {
  const int longest = std::max(std::abs(int{drag.dx}), std::abs(int{drag.dy}));
  const int count = std::max(1, (longest + longestDragPart - 1) / longestDragPart);
  const auto reached = [count](int whole, int part) { return whole * part / count; };
  std::vector<step::Move> parts;
  for (int part = 1; part <= count; ++part) {
    parts.push_back({static_cast<std::int16_t>(reached(drag.dx, part) - reached(drag.dx, part - 1)),
                     static_cast<std::int16_t>(reached(drag.dy, part) - reached(drag.dy, part - 1))});
  }
  return parts;
}

}  // namespace orvel::phone
