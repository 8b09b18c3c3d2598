#pragma once

#include <string>
#include <vector>

namespace orvel {

/// Where the user and the system say how programs shall be.
///
/// Threads: as any value; `ofUser` reads the environment.
struct ConfigurationFolders {
  std::string own = {};                  ///< The user's.
  std::vector<std::string> system = {};  ///< The one that wins first.

  /// Those of the environment: XDG_CONFIG_HOME and XDG_CONFIG_DIRS, or what stands for them where they are not set.
  static ConfigurationFolders ofUser();
};

}  // namespace orvel
