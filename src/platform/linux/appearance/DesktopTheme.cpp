#include "platform/linux/appearance/DesktopTheme.hpp"

#include "base/UTF8.hpp"

#include <glib.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <string>
#include <system_error>

namespace orvel {
namespace {

constexpr std::string_view dark = "dark";

bool isDarkAt(std::string_view name, std::size_t at) {
  return g_ascii_strncasecmp(name.data() + at, dark.data(), dark.size()) == 0;
}

/// Where a word begins: "DarkBlue", "Yaru-dark" and "BreezeDark" have one.
bool beginsWord(std::string_view name, std::size_t at) {
  if (at == 0 || !g_ascii_isalpha(name[at - 1])) return true;
  return g_ascii_isupper(name[at]) && g_ascii_islower(name[at - 1]);
}

bool endsWord(std::string_view name, std::size_t end) {
  if (end == name.size() || !g_ascii_isalpha(name[end])) return true;
  return g_ascii_isupper(name[end]) && g_ascii_islower(name[end - 1]);
}

constexpr double smallestSize = 4;
constexpr double largestSize = 72;
constexpr std::size_t longestFamily = 256;
constexpr std::string_view wordBreaks = " \t\n\r";

/// Words for the style, in small letters and without dashes, as they may be written either way.
constexpr std::array<std::string_view, 46> styleWords = {
    "normal",         "roman",          "oblique",      "italic",        "smallcaps",    "allsmallcaps",
    "petitecaps",     "allpetitecaps",  "unicase",      "titlecaps",     "thin",         "ultralight",
    "extralight",     "light",          "semilight",    "demilight",     "book",         "regular",
    "medium",         "semibold",       "demibold",     "bold",          "ultrabold",    "extrabold",
    "heavy",          "black",          "ultraheavy",   "extraheavy",    "ultrablack",   "extrablack",
    "ultracondensed", "extracondensed", "condensed",    "semicondensed", "semiexpanded", "expanded",
    "extraexpanded",  "ultraexpanded",  "notrotated",   "south",         "upsidedown",   "north",
    "rotatedleft",    "east",           "rotatedright", "west"};

std::string_view lastWordOf(std::string_view text) {
  const auto blank = text.find_last_of(wordBreaks);
  return blank == std::string_view::npos ? text : text.substr(blank + 1);
}

/// The text in front of its last word.
std::string_view withoutLastWord(std::string_view text) {
  return trimmed(text.substr(0, text.size() - lastWordOf(text).size()));
}

bool isStyleWord(std::string_view word) {
  std::string plain;
  for (const char letter : word) {
    if (letter != '-') plain += g_ascii_tolower(letter);
  }
  return std::find(styleWords.begin(), styleWords.end(), plain) != styleWords.end();
}

std::optional<double> sizeIn(std::string_view word) {
  double size = 0;
  const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), size, std::chars_format::fixed);
  const bool isNumber = error == std::errc() && end == word.data() + word.size();
  return isNumber && size >= smallestSize && size <= largestSize ? std::optional(size) : std::nullopt;
}

/// A comma ends a family, so that it may end with a word that would otherwise stand for the style.
std::string_view familyIn(std::string_view text) {
  const auto comma = text.find(',');
  if (comma != std::string_view::npos) return trimmed(text.substr(0, comma));
  while (isStyleWord(lastWordOf(text))) text = withoutLastWord(text);
  return text;
}

}  // namespace

bool isDarkTheme(std::string_view name) {
  for (std::size_t at = 0; at + dark.size() <= name.size(); ++at) {
    if (isDarkAt(name, at) && beginsWord(name, at) && endsWord(name, at + dark.size())) return true;
  }
  return false;
}

std::optional<DesktopFont> parseFontDescription(std::string_view text) {
  std::string_view rest = trimmed(text);
  // Settings of fonts that can be varied.
  while (lastWordOf(rest).starts_with('@') || lastWordOf(rest).starts_with('#')) rest = withoutLastWord(rest);
  const auto size = sizeIn(lastWordOf(rest));
  const std::string_view family = familyIn(withoutLastWord(rest));
  if (!size || family.empty() || family.size() > longestFamily || !isValidUTF8(family)) return std::nullopt;
  return DesktopFont{.family = std::string(family), .size = *size};
}

}  // namespace orvel
