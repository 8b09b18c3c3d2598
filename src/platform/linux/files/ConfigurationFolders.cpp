#include "platform/linux/files/ConfigurationFolders.hpp"

#include "platform/linux/files/FolderList.hpp"

namespace orvel {

ConfigurationFolders ConfigurationFolders::ofUser() {
  ConfigurationFolders folders;
  const std::string own = environmentVariable("XDG_CONFIG_HOME");
  folders.own = own.starts_with('/') ? own : environmentVariable("HOME") + "/.config";
  const std::string system = environmentVariable("XDG_CONFIG_DIRS");
  addFolders(folders.system, system.empty() ? "/etc/xdg" : system);
  return folders;
}

}  // namespace orvel
