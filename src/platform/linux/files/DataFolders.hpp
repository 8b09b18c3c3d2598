#pragma once

#include <string>
#include <vector>

namespace orvel {

/// Where programs leave their data on this system, such as desktop entries and icons.
///
/// Threads: as any value; `ofUser` reads the environment.
struct DataFolders {
  std::string home = {};                 ///< The user's home folder; empty when nobody knows it.
  std::vector<std::string> shared = {};  ///< The user's data folder, then the system's, the one that wins first.

  /// Those of the environment: HOME, XDG_DATA_HOME and XDG_DATA_DIRS, or what stands for them where they are not set.
  static DataFolders ofUser();
};

}  // namespace orvel
