#include "platform/linux/files/DataFolders.hpp"

#include "platform/linux/files/FolderList.hpp"

namespace orvel {

DataFolders DataFolders::ofUser() {
  DataFolders folders{.home = environmentVariable("HOME")};
  const std::string own = environmentVariable("XDG_DATA_HOME");
  addFolders(folders.shared, own.starts_with('/') ? own : folders.home + "/.local/share");
  const std::string system = environmentVariable("XDG_DATA_DIRS");
  addFolders(folders.shared, system.empty() ? "/usr/local/share:/usr/share" : system);
  return folders;
}

}  // namespace orvel
