#include "platform/linux/files/FolderList.hpp"

#include <algorithm>
#include <cstdlib>

namespace orvel {
namespace {

void addFolder(std::vector<std::string>& folders, std::string_view folder) {
  while (folder.size() > 1 && folder.ends_with('/')) folder.remove_suffix(1);
  const bool isKnown = std::find(folders.begin(), folders.end(), folder) != folders.end();
  if (folder.starts_with('/') && !isKnown) folders.emplace_back(folder);
}

}  // namespace

std::string environmentVariable(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

void addFolders(std::vector<std::string>& folders, std::string_view list) {
  while (!list.empty()) {
    const auto end = std::min(list.find(':'), list.size());
    addFolder(folders, list.substr(0, end));
    list.remove_prefix(std::min(end + 1, list.size()));
  }
}

}  // namespace orvel
