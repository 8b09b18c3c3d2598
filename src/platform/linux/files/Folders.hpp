#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orvel {

/// The value of a variable of the environment; empty where it is not set.
std::string environmentVariable(const char* name);

/// The path of what a folder holds by that name.
std::string pathIn(const std::string& folder, std::string_view name);

/// Whether there is a folder, also by way of a link.
bool isFolder(const std::string& path);

/// Where the user and the system say how programs shall be.
///
/// Threads: as any value; `ofUser` reads the environment.
struct ConfigurationFolders {
  std::string own = {};                  ///< The user's.
  std::vector<std::string> system = {};  ///< The one that wins first.

  /// Those of the environment: XDG_CONFIG_HOME and XDG_CONFIG_DIRS, or what stands for them where they are not set.
  /// Relative folders mean nothing, as they would depend on where this program was started, and are left out.
  static ConfigurationFolders ofUser();
};

/// Where programs leave their data on this system, such as desktop entries and icons.
///
/// Threads: as any value; `ofUser` reads the environment.
struct DataFolders {
  std::string home = {};                 ///< The user's home folder; empty when it is unknown.
  std::vector<std::string> shared = {};  ///< The user's data folder, then the system's, the one that wins first.

  /// Those of the environment: HOME, XDG_DATA_HOME and XDG_DATA_DIRS, or what stands for them where they are not set.
  /// Relative folders are left out.
  static DataFolders ofUser();
};

}  // namespace orvel
