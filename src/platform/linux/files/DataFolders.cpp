#include "platform/linux/files/DataFolders.hpp"

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace orvel {
namespace {

std::string variable(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

/// Relative ones mean nothing: they would depend on where this program was started.
void addFolder(std::vector<std::string>& folders, std::string_view folder) {
  while (folder.size() > 1 && folder.ends_with('/')) folder.remove_suffix(1);
  const bool isKnown = std::find(folders.begin(), folders.end(), folder) != folders.end();
  if (folder.starts_with('/') && !isKnown) folders.emplace_back(folder);
}

}  // namespace

DataFolders DataFolders::ofUser() {
  DataFolders folders{.home = variable("HOME")};
  const std::string own = variable("XDG_DATA_HOME");
  addFolder(folders.shared, own.starts_with('/') ? own : folders.home + "/.local/share");

  std::string system = variable("XDG_DATA_DIRS");
  if (system.empty()) system = "/usr/local/share:/usr/share";
  std::string_view rest = system;
  while (!rest.empty()) {
    const auto end = std::min(rest.find(':'), rest.size());
    addFolder(folders.shared, rest.substr(0, end));
    rest.remove_prefix(std::min(end + 1, rest.size()));
  }
  return folders;
}

}  // namespace orvel
