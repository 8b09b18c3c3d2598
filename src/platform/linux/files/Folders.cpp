#include "platform/linux/files/Folders.hpp"

#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>

namespace orvel {
namespace {

void addFolder(std::vector<std::string>& folders, std::string_view folder) {
  while (folder.size() > 1 && folder.ends_with('/')) folder.remove_suffix(1);
  const bool isKnown = std::find(folders.begin(), folders.end(), folder) != folders.end();
  if (folder.starts_with('/') && !isKnown) folders.emplace_back(folder);
}

/// Adds the folders of a list such as "/one:/two", each once.
void addFolders(std::vector<std::string>& folders, std::string_view list) {
  while (!list.empty()) {
    const auto end = std::min(list.find(':'), list.size());
    addFolder(folders, list.substr(0, end));
    list.remove_prefix(std::min(end + 1, list.size()));
  }
}

}  // namespace

std::string environmentVariable(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

std::string pathIn(const std::string& folder, std::string_view name) {
  std::string path = folder;
  path += '/';
  return path += name;
}

bool isFolder(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

ConfigurationFolders ConfigurationFolders::ofUser() {
  ConfigurationFolders folders;
  const std::string own = environmentVariable("XDG_CONFIG_HOME");
  folders.own = own.starts_with('/') ? own : environmentVariable("HOME") + "/.config";
  const std::string system = environmentVariable("XDG_CONFIG_DIRS");
  addFolders(folders.system, system.empty() ? "/etc/xdg" : system);
  return folders;
}

DataFolders DataFolders::ofUser() {
  DataFolders folders{.home = environmentVariable("HOME")};
  const std::string own = environmentVariable("XDG_DATA_HOME");
  addFolders(folders.shared, own.starts_with('/') ? own : folders.home + "/.local/share");
  const std::string system = environmentVariable("XDG_DATA_DIRS");
  addFolders(folders.shared, system.empty() ? "/usr/local/share:/usr/share" : system);
  return folders;
}

}  // namespace orvel
