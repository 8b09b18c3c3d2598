#include "platform/linux/applications/DesktopEntry.hpp"

#include "platform/linux/GLibPointer.hpp"

#include <gio/gdesktopappinfo.h>

#include <algorithm>

namespace orvel {
namespace {

std::string textOf(const char* text) {
  return text == nullptr ? std::string() : std::string(text);
}

std::string stringIn(GKeyFile* keys, const char* key) {
  const GLibPointer<char> value(g_key_file_get_locale_string(keys, G_KEY_FILE_DESKTOP_GROUP, key, nullptr, nullptr));
  return textOf(value.get());
}

std::string fileNameOf(const std::string& path) {
  return path.substr(path.rfind('/') + 1);
}

}  // namespace

std::optional<DesktopEntry> DesktopEntry::parse(const std::string& text) {
  const auto keys = parseKeyFile(text);
  if (!keys || stringIn(keys.get(), G_KEY_FILE_DESKTOP_KEY_TYPE) != G_KEY_FILE_DESKTOP_TYPE_APPLICATION) {
    return std::nullopt;
  }
  DesktopEntry entry;
  if (g_key_file_has_key(keys.get(), G_KEY_FILE_DESKTOP_GROUP, G_KEY_FILE_DESKTOP_KEY_NAME, nullptr)) {
    const GLibPointer<char> name(g_key_file_get_locale_string(keys.get(), G_KEY_FILE_DESKTOP_GROUP,
                                                              G_KEY_FILE_DESKTOP_KEY_NAME, nullptr, nullptr));
    if (!name) return std::nullopt;  // no UTF-8
    entry.name = name.get();
  }
  const GLibPointer<GDesktopAppInfo> info(g_desktop_app_info_new_from_keyfile(keys.get()));
  // It takes no entry whose program is missing.
  if (!info) return entry;
  entry.isUsable = !g_desktop_app_info_get_is_hidden(info.get());
  entry.isListed = entry.isUsable && g_app_info_should_show(G_APP_INFO(info.get()));
  entry.icon = stringIn(keys.get(), G_KEY_FILE_DESKTOP_KEY_ICON);
  entry.windowClass = textOf(g_desktop_app_info_get_startup_wm_class(info.get()));
  entry.program = fileNameOf(textOf(g_app_info_get_executable(G_APP_INFO(info.get()))));
  entry.runsInTerminal = g_desktop_app_info_get_boolean(info.get(), G_KEY_FILE_DESKTOP_KEY_TERMINAL);
  return entry;
}

std::string DesktopEntry::identifierOf(std::string_view fileName) {
  std::string identifier(fileName.substr(0, fileName.size() - suffix.size()));
  std::replace(identifier.begin(), identifier.end(), '/', '-');
  return identifier;
}

}  // namespace orvel
