#pragma once

#include <sys/types.h>

#include <cstddef>
#include <ctime>
#include <optional>
#include <string>

namespace orvel {

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
