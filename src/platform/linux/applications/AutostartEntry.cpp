#include "platform/linux/applications/AutostartEntry.hpp"

#include "platform/linux/GLibPointer.hpp"

#include <gio/gdesktopappinfo.h>

#include <string_view>

namespace orvel {
namespace {

constexpr auto group = G_KEY_FILE_DESKTOP_GROUP;
constexpr auto gnomeSwitch = "X-GNOME-Autostart-enabled";
constexpr std::string_view startItsArguments = R"(exec "$0" "$@")";

/// One word of a command line. That it stands in a file in which backslashes have a meaning too is not its business.
std::string quoted(std::string_view word) {
  std::string result = "\"";
  for (const char letter : word) {
    if (letter == '"' || letter == '`' || letter == '$' || letter == '\\') result += '\\';
    if (letter == '%') result += '%';
    result += letter;
  }
  return result + '"';
}

/// Desktops look for the program before they have read the signs for a percent sign, and a command must not begin with
/// an assignment: such a program is started by a shell.
bool mustNotComeFirst(const std::string& program) {
  return program.find_first_of("%=") != std::string::npos;
}

std::string commandLine(const std::string& program, const std::vector<std::string>& arguments) {
  std::string line = quoted(program);
  for (const std::string& argument : arguments) line += " " + argument;
  return mustNotComeFirst(program) ? "sh -c " + quoted(startItsArguments) + " " + line : line;
}

bool isSwitchedOff(GKeyFile* keys) {
  return g_key_file_has_key(keys, group, gnomeSwitch, nullptr) &&
         !g_key_file_get_boolean(keys, group, gnomeSwitch, nullptr);
}

}  // namespace

std::string AutostartEntry::text() const {
  const GLibPointer<GKeyFile> keys(g_key_file_new());
  const auto set = [&](const char* key, const std::string& value) {
    g_key_file_set_string(keys.get(), group, key, value.c_str());
  };
  set(G_KEY_FILE_DESKTOP_KEY_TYPE, G_KEY_FILE_DESKTOP_TYPE_APPLICATION);
  set(G_KEY_FILE_DESKTOP_KEY_NAME, name);
  set(G_KEY_FILE_DESKTOP_KEY_ICON, icon);
  set(G_KEY_FILE_DESKTOP_KEY_TRY_EXEC, program);
  set(G_KEY_FILE_DESKTOP_KEY_EXEC, commandLine(program, arguments));
  if (isHidden) g_key_file_set_boolean(keys.get(), group, G_KEY_FILE_DESKTOP_KEY_HIDDEN, true);
  const GLibPointer<char> text(g_key_file_to_data(keys.get(), nullptr, nullptr));
  return text.get();
}

bool AutostartEntry::starts(const std::string& text) {
  const auto keys = parseKeyFile(text);
  if (!keys || isSwitchedOff(keys.get())) return false;
  // It takes no entry whose program is missing.
  const GLibPointer<GDesktopAppInfo> info(g_desktop_app_info_new_from_keyfile(keys.get()));
  if (!info || g_desktop_app_info_get_is_hidden(info.get())) return false;
  const char* program = g_app_info_get_executable(G_APP_INFO(info.get()));
  const bool hasProgram = program != nullptr && *program != '\0';
  return hasProgram && g_desktop_app_info_get_show_in(info.get(), nullptr);
}

}  // namespace orvel
