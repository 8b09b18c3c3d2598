#pragma once

#include <sys/types.h>

#include <cstddef>
#include <ctime>
#include <optional>
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

/// Identifies a state of a file or folder: while its stamp is the same, it has not changed. Threads: as any value.
struct FileStamp {
  dev_t device = 0;
  ino_t number = 0;
  off_t size = 0;
  time_t seconds = 0;  ///< Since when it is as it is.
  long nanoseconds = 0;
  bool isPlainFile = false;

  /// Nothing where there is none.
  static std::optional<FileStamp> of(const std::string& path);

  /// False for one that was changed just now: the clock of files is coarse, and the next change may look the same.
  bool isSettled() const;

  friend bool operator==(const FileStamp&, const FileStamp&) = default;
};

/// Whether there is a file that is no folder, pipe or device, also by way of a link. Threads: any.
bool isPlainFile(const std::string& path);

/// The content of a file. Nothing when it cannot be read, is larger than `limit` bytes, or is no plain file: opening a
/// pipe or a device could wait forever, or set something off. Threads: any.
std::optional<std::string> readSmallFile(const std::string& path, std::size_t limit);

/// The same for what `limit` bytes hold of a file that has no size of its own, as those of /proc.
std::string readBeginning(const std::string& path, std::size_t limit);

}  // namespace orvel
