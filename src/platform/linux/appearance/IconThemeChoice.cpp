#include "platform/linux/appearance/IconThemeChoice.hpp"

#include "platform/linux/GLibPointer.hpp"
#include "platform/linux/appearance/DesktopTheme.hpp"
#include "platform/linux/files/Files.hpp"

#include <cstddef>

namespace orvel {
namespace {

constexpr std::size_t largestConfiguration = std::size_t{1} << 20;

std::string valueIn(const std::string& path, const char* group, const char* key) {
  const auto text = readSmallFile(path, largestConfiguration);
  const auto keys = text ? parseKeyFile(*text) : nullptr;
  if (!keys) return {};
  const GLibPointer<char> value(g_key_file_get_string(keys.get(), group, key, nullptr));
  return value ? std::string(value.get()) : std::string();
}

}  // namespace

IconThemeChoice::IconThemeChoice(ThemeSettings& settings)
    : settings_(settings),
      configuration_(ConfigurationFolders::ofUser().own),
      isKDE_(environmentVariable("XDG_CURRENT_DESKTOP").find("KDE") != std::string::npos) {}

std::string IconThemeChoice::name() const {
  if (isKDE_) {
    if (auto name = valueIn(configuration_ + "/kdeglobals", "Icons", "Theme"); !name.empty()) return name;
  }
  if (auto name = settings_.theme().iconTheme) return *std::move(name);
  return valueIn(configuration_ + "/gtk-3.0/settings.ini", "Settings", "gtk-icon-theme-name");
}

}  // namespace orvel
