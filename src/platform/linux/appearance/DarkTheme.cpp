#include "platform/linux/appearance/DarkTheme.hpp"

#include <glib.h>

#include <cstddef>

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

}  // namespace

bool isDarkTheme(std::string_view name) {
  for (std::size_t at = 0; at + dark.size() <= name.size(); ++at) {
    if (isDarkAt(name, at) && beginsWord(name, at) && endsWord(name, at + dark.size())) return true;
  }
  return false;
}

}  // namespace orvel
