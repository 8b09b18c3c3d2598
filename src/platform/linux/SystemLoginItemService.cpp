#include "platform/linux/SystemLoginItemService.hpp"

#include "platform/linux/GLibPointer.hpp"
#include "platform/linux/files/Files.hpp"

#include <gio/gdesktopappinfo.h>
#include <glib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstddef>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace orvel {
namespace {

constexpr auto identifier = "app.orvel.Orvel";
constexpr auto withoutPanel = "--background";
constexpr std::size_t largestAutostartEntry = std::size_t{1} << 20;
constexpr int ownFolderMode = 0700;
constexpr int entryFile = 0644;

std::string autostartFolder(const std::string& configuration) {
  return configuration + "/autostart";
}

std::string entryIn(const std::string& configuration) {
  return autostartFolder(configuration) + "/" + identifier + ".desktop";
}

/// Whatever it is: a link to nowhere, too, stands in place of the files of less weight.
bool isThere(const std::string& path) {
  struct stat status {};
  return lstat(path.c_str(), &status) == 0;
}

constexpr auto entryGroup = G_KEY_FILE_DESKTOP_GROUP;
constexpr auto gnomeSwitch = "X-GNOME-Autostart-enabled";
constexpr std::string_view startItsArguments = R"(exec "$0" "$@")";

/// One word of a command line. That it stands in a file in which backslashes have a meaning too is not its business.
std::string quotedWord(std::string_view word) {
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
  std::string line = quotedWord(program);
  for (const std::string& argument : arguments) line += " " + argument;
  return mustNotComeFirst(program) ? "sh -c " + quotedWord(startItsArguments) + " " + line : line;
}

bool isSwitchedOff(GKeyFile* keys) {
  return g_key_file_has_key(keys, entryGroup, gnomeSwitch, nullptr) &&
         !g_key_file_get_boolean(keys, entryGroup, gnomeSwitch, nullptr);
}

/// An entry by which a desktop starts a program at login. Threads: as any value.
struct AutostartEntry {
  std::string name;
  std::string icon;
  std::string program;                 ///< An absolute path.
  std::vector<std::string> arguments;  ///< What it is started with.
  bool isHidden = false;               ///< Has the desktop forget entries of the same name in folders of less weight.

  /// The text of its file.
  std::string text() const;

  /// Whether the desktop of this login starts a program by an entry with that text: not if it is damaged, switched off,
  /// meant for other desktops, or of a program that is missing.
  static bool starts(const std::string& text);
};

std::string AutostartEntry::text() const {
  const GLibPointer<GKeyFile> keys(g_key_file_new());
  const auto set = [&](const char* key, const std::string& value) {
    g_key_file_set_string(keys.get(), entryGroup, key, value.c_str());
  };
  set(G_KEY_FILE_DESKTOP_KEY_TYPE, G_KEY_FILE_DESKTOP_TYPE_APPLICATION);
  set(G_KEY_FILE_DESKTOP_KEY_NAME, name);
  set(G_KEY_FILE_DESKTOP_KEY_ICON, icon);
  set(G_KEY_FILE_DESKTOP_KEY_TRY_EXEC, program);
  set(G_KEY_FILE_DESKTOP_KEY_EXEC, commandLine(program, arguments));
  if (isHidden) g_key_file_set_boolean(keys.get(), entryGroup, G_KEY_FILE_DESKTOP_KEY_HIDDEN, true);
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

constexpr std::string_view replacedMark = " (deleted)";

std::string runningProgram() {
  std::error_code ignored;
  std::string path = std::filesystem::read_symlink("/proc/self/exe", ignored).string();
  const bool isReplaced = path.ends_with(replacedMark) && !std::filesystem::exists(path, ignored);
  if (isReplaced) path.resize(path.size() - replacedMark.size());
  return path;
}

/// The file of the AppImage that `program` is part of. Programs that another AppImage has started inherit its
/// variables, and are not part of it.
std::string imageOf(const std::string& program) {
  const std::string content = environmentVariable("APPDIR");
  std::string image = environmentVariable("APPIMAGE");
  const bool isItsPart = content.starts_with('/') && program.starts_with(content + "/");
  if (!isItsPart || !image.starts_with('/') || access(image.c_str(), X_OK) != 0) return {};
  return image;
}

}  // namespace

SystemLoginItemService::SystemLoginItemService(const ConfigurationFolders& folders, std::string program)
    : folders_(folders), program_(std::move(program)) {}

bool SystemLoginItemService::isEnabled() const {
  return isStartedBy(folders_.own).value_or(isStartedBySystem());
}

bool SystemLoginItemService::enter() {
  const std::string text = entry(false);
  return AutostartEntry::starts(text) && write(text) && isEnabled();
}

bool SystemLoginItemService::remove() {
  if (!isEnabled()) return false;
  const bool isDone = isStartedBySystem() ? write(entry(true)) : unlink(entryIn(folders_.own).c_str()) == 0;
  return isDone && !isEnabled();
}

/// Nothing when that folder says nothing of it.
std::optional<bool> SystemLoginItemService::isStartedBy(const std::string& folder) const {
  const std::string path = entryIn(folder);
  if (!isThere(path)) return std::nullopt;
  const auto text = readSmallFile(path, largestAutostartEntry);
  return text && AutostartEntry::starts(*text);
}

bool SystemLoginItemService::isStartedBySystem() const {
  for (const std::string& folder : folders_.system) {
    if (const auto isStarted = isStartedBy(folder)) return *isStarted;
  }
  return false;
}

std::string SystemLoginItemService::entry(bool isHidden) const {
  return AutostartEntry{
      .name = "Orvel", .icon = identifier, .program = program_, .arguments = {withoutPanel}, .isHidden = isHidden}
      .text();
}

bool SystemLoginItemService::write(const std::string& text) const {
  constexpr auto wholeOrNotAtAll =
      static_cast<GFileSetContentsFlags>(G_FILE_SET_CONTENTS_CONSISTENT | G_FILE_SET_CONTENTS_DURABLE);
  if (g_mkdir_with_parents(autostartFolder(folders_.own).c_str(), ownFolderMode) != 0) return false;
  return g_file_set_contents_full(entryIn(folders_.own).c_str(), text.data(), static_cast<gssize>(text.size()),
                                  wholeOrNotAtAll, entryFile, nullptr);
}

std::string ownProgram() {
  const std::string program = runningProgram();
  const std::string image = imageOf(program);
  return image.empty() ? program : image;
}

}  // namespace orvel
