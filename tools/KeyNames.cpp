#include "tools/KeyNames.hpp"

#include "tools/PhoneFrames.hpp"

#include <charconv>
#include <cstddef>

namespace orvel::phone {
namespace {

struct KeyName {
  std::string_view name;
  std::uint16_t keyCode;
};

struct ModifierName {
  std::string_view name;
  Modifier bit;
};

constexpr KeyName keyNames[] = {
    {"a", 0},
    {"b", 11},
    {"c", 8},
    {"d", 2},
    {"e", 14},
    {"f", 3},
    {"g", 5},
    {"h", 4},
    {"i", 34},
    {"j", 38},
    {"k", 40},
    {"l", 37},
    {"m", 46},
    {"n", 45},
    {"o", 31},
    {"p", 35},
    {"q", 12},
    {"r", 15},
    {"s", 1},
    {"t", 17},
    {"u", 32},
    {"v", 9},
    {"w", 13},
    {"x", 7},
    {"y", 16},
    {"z", 6},
    {"0", 29},
    {"1", 18},
    {"2", 19},
    {"3", 20},
    {"4", 21},
    {"5", 23},
    {"6", 22},
    {"7", 26},
    {"8", 28},
    {"9", 25},
    {"minus", 27},
    {"-", 27},
    {"equal", 24},
    {"=", 24},
    {"leftbracket", 33},
    {"[", 33},
    {"rightbracket", 30},
    {"]", 30},
    {"backslash", 42},
    {"\\", 42},
    {"semicolon", 41},
    {";", 41},
    {"quote", 39},
    {"'", 39},
    {"comma", 43},
    {",", 43},
    {"period", 47},
    {".", 47},
    {"slash", 44},
    {"/", 44},
    {"grave", 50},
    {"`", 50},
    {"return", 36},
    {"enter", 36},
    {"tab", 48},
    {"space", 49},
    {"delete", 51},
    {"backspace", 51},
    {"forwarddelete", 117},
    {"escape", 53},
    {"esc", 53},
    {"left", 123},
    {"right", 124},
    {"down", 125},
    {"up", 126},
    {"home", 115},
    {"end", 119},
    {"pageup", 116},
    {"pagedown", 121},
    {"help", 114},
    {"f1", 122},
    {"f2", 120},
    {"f3", 99},
    {"f4", 118},
    {"f5", 96},
    {"f6", 97},
    {"f7", 98},
    {"f8", 100},
    {"f9", 101},
    {"f10", 109},
    {"f11", 103},
    {"f12", 111},
    {"f13", 105},
    {"f14", 107},
    {"f15", 113},
    {"command", 55},
    {"shift", 56},
    {"capslock", 57},
    {"option", 58},
    {"control", 59},
    {"rightshift", 60},
    {"rightoption", 61},
    {"rightcontrol", 62},
    {"function", 63},
};

constexpr ModifierName modifierNames[] = {
    {"cmd", Modifier::command},     {"command", Modifier::command}, {"shift", Modifier::shift},
    {"option", Modifier::option},   {"opt", Modifier::option},      {"alt", Modifier::option},
    {"control", Modifier::control}, {"ctrl", Modifier::control},    {"function", Modifier::function},
    {"fn", Modifier::function},
};

std::string lowerCase(std::string_view text) {
  std::string lower(text);
  for (char& letter : lower) {
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
  }
  return lower;
}

std::optional<std::uint16_t> keyCodeIn(std::string_view name) {
  for (const auto& key : keyNames) {
    if (key.name == name) return key.keyCode;
  }
  if (!name.starts_with("0x")) return std::nullopt;
  std::uint16_t code = 0;
  const char* const end = name.data() + name.size();
  const auto [stop, error] = std::from_chars(name.data() + 2, end, code, 16);
  if (error != std::errc() || stop != end) return std::nullopt;
  return code;
}

std::optional<Modifier> modifierIn(std::string_view name) {
  for (const auto& modifier : modifierNames) {
    if (modifier.name == name) return modifier.bit;
  }
  return std::nullopt;
}

}  // namespace

std::optional<KeyChord> keyChord(std::string_view word) {
  const std::string lower = lowerCase(word);
  std::string_view rest = lower;
  KeyChord chord;
  for (auto plus = rest.find('+'); plus != std::string_view::npos; plus = rest.find('+')) {
    const auto bit = modifierIn(rest.substr(0, plus));
    if (!bit) return std::nullopt;
    chord.modifiers |= *bit;
    rest.remove_prefix(plus + 1);
  }
  const auto code = keyCodeIn(rest);
  if (!code) return std::nullopt;
  chord.keyCode = *code;
  return chord;
}

std::string keyNameList() {
  constexpr std::size_t width = 76;
  std::string list;
  std::size_t column = 0;
  for (const auto& key : keyNames) {
    if (column + 1 + key.name.size() > width) {
      list += '\n';
      column = 0;
    }
    if (column > 0) {
      list += ' ';
      ++column;
    }
    list += key.name;
    column += key.name.size();
  }
  return list;
}

}  // namespace orvel::phone
