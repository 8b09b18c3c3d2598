#include "platform/linux/icons/IconThemeChoice.hpp"

#include "platform/linux/files/ConfigurationFolders.hpp"
#include "platform/linux/files/KeyFile.hpp"
#include "platform/linux/files/SmallFile.hpp"
#include "platform/linux/x11/XSettings.hpp"

#include <cstddef>
#include <cstdlib>

namespace orvel {
namespace {

constexpr std::size_t largestFile = std::size_t{1} << 20;

std::string variable(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

std::string valueIn(const std::string& path, const char* group, const char* key) {
  const auto text = readSmallFile(path, largestFile);
  const auto keys = text ? parseKeyFile(*text) : nullptr;
  if (!keys) return {};
  const GLibPointer<char> value(g_key_file_get_string(keys.get(), group, key, nullptr));
  return value ? std::string(value.get()) : std::string();
}

}  // namespace

IconThemeChoice::IconThemeChoice(const X11Connection& connection)
    : connection_(connection),
      configuration_(ConfigurationFolders::ofUser().own),
      isKDE_(variable("XDG_CURRENT_DESKTOP").find("KDE") != std::string::npos) {}

std::string IconThemeChoice::name() const {
  if (isKDE_) {
    if (auto name = valueIn(configuration_ + "/kdeglobals", "Icons", "Theme"); !name.empty()) return name;
  }
  auto told = readXSettings(connection_);
  if (const auto name = told.find("Net/IconThemeName"); name != told.end()) return name->second;
  return valueIn(configuration_ + "/gtk-3.0/settings.ini", "Settings", "gtk-icon-theme-name");
}

}  // namespace orvel
