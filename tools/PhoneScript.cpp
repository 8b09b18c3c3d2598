#include "tools/PhoneScript.hpp"

#include "base/UTF8.hpp"
#include "tools/DecimalNumber.hpp"
#include "tools/MediaNames.hpp"

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

constexpr const char* seconds = "seconds (0 to 86400)";
constexpr double longestWait = 24 * 60 * 60;
constexpr int longestDragPart = 10;

template <std::floating_point Number>
std::optional<Number> numberIn(std::string_view word) {
  return decimalNumber(word);
}

template <std::integral Number>
std::optional<Number> numberIn(std::string_view word) {
  Number number{};
  const char* const end = word.data() + word.size();
  const auto [stop, error] = std::from_chars(word.data(), end, number);
  if (error != std::errc() || stop != end) return std::nullopt;
  return number;
}

/// Whether a word shall be a number, and be it a bad one.
bool isNumeric(std::string_view word) {
  return word.find_first_of("0123456789") == 0;
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

  std::uint8_t media() {
    constexpr const char* what = "a media key (its name, or a number from 0 to 255)";
    const auto word = argument(what);
    if (!word) return 0;
    const auto number = mediaKey(*word);
    return number ? *number : refuse<std::uint8_t>(*word, what);
  }

  /// A folder; not an option that stands where one is missing.
  std::string folder() {
    constexpr const char* what = "a folder";
    const auto word = argument(what);
    if (!word) return {};
    return word->starts_with("--") ? refuse<std::string>(*word, what) : std::string(*word);
  }

  /// The id of an application, which must fit a frame.
  std::string id() {
    const auto word = argument("the id of an application");
    if (!word) return {};
    const bool fits = word->size() <= longestFrameText && isValidUTF8(*word);
    if (!fits) mistake = needs("ids in UTF-8 of at most 65535 bytes");
    return std::string(*word);
  }

  /// Ids up to the end of the list, possibly none.
  std::vector<std::string> ids() {
    std::vector<std::string> list;
    while (!atEnd() && !endsList()) list.push_back(id());
    return list;
  }

  /// What is to be typed: words up to the end of the list, or a dash in their place for the standard input.
  step::Text text() {
    constexpr const char* what = "words, or - for the standard input";
    if (takes("-")) {
      takes("--");
      return {.text = "", .fromInput = true};
    }
    std::vector<std::string> list;
    while (!atEnd() && !endsList()) list.emplace_back(*argument(what));
    if (list.empty()) {
      mistake = needs(what);
      return {};
    }
    std::string text = list.front();
    for (const std::string& word : std::span(list).subspan(1)) text += " " + word;
    if (!isValidUTF8(text)) mistake = "the text is not UTF-8";
    return {.text = text};
  }

  /// How long and in which way to mirror: a number of seconds, perhaps, and then options in any order.
  step::Mirror mirror() {
    step::Mirror mirror;
    if (!atEnd() && isNumeric(words_.front())) mirror.seconds = number(seconds, 0.0, longestWait);
    while (!atEnd() && words_.front().starts_with("--")) mirrorOption(mirror);
    return mirror;
  }

  /// Takes this word if it is the next.
  bool takes(std::string_view word) {
    if (atEnd() || words_.front() != word) return false;
    words_ = words_.subspan(1);
    return true;
  }

  std::string mistake;

 private:
  /// Lists of words end where the words do, or at two dashes.
  bool endsList() { return takes("--"); }

  void mirrorOption(step::Mirror& mirror) {
    if (takes("--window")) {
      mirror.inWindow = true;
    } else if (takes("--width")) {
      mirror.wish.width = number("a width in pixels (1 to 16384)", 1, 16384);
    } else if (takes("--fps")) {
      mirror.wish.fps = number("frames a second (1 to 240)", 1, 240);
    } else if (takes("--quality")) {
      mirror.wish.quality = number("a quality from 0 to 1", 0.0, 1.0);
    } else if (takes("--save")) {
      mirror.folder = folder();
    } else {
      mistake = "\"mirror\" has no option \"" + words_.front() + "\"";
    }
  }

  std::string needs(const char* what) const { return "\"" + std::string(command_) + "\" needs " + what; }

  std::optional<std::string_view> argument(const char* what) {
    if (!mistake.empty()) return std::nullopt;
    if (words_.empty()) {
      mistake = needs(what);
      return std::nullopt;
    }
    const std::string_view word = words_.front();
    words_ = words_.subspan(1);
    return word;
  }

  template <class Value>
  Value refuse(std::string_view word, const char* what) {
    mistake = needs(what) + ", not \"" + std::string(word) + "\"";
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
    {"text", [](WordReader& in) -> Step { return in.text(); }},
    {"media", [](WordReader& in) -> Step { return step::Media{in.media()}; }},
    {"apps", [](WordReader& in) -> Step { return step::Apps{in.takes("--json")}; }},
    {"icons",
     [](WordReader& in) -> Step {
       return step::Icons{in.folder(), in.ids()};
     }},
    {"activate",
     [](WordReader& in) -> Step {
       return step::App{AppAction::activate, in.id()};
     }},
    {"quit",
     [](WordReader& in) -> Step {
       return step::App{AppAction::quit, in.id()};
     }},
    {"mirror", [](WordReader& in) -> Step { return in.mirror(); }},
    {"snap", [](WordReader&) -> Step { return step::Snap{}; }},
    {"reveal", [](WordReader&) -> Step { return step::Reveal{}; }},
    {"ping", [](WordReader&) -> Step { return step::Ping{}; }},
    {"wait", [](WordReader& in) -> Step { return step::Wait{in.number(seconds, 0.0, longestWait)}; }},
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
