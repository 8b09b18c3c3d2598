#pragma once

#include <sys/types.h>

#include <ctime>
#include <optional>
#include <string>

namespace orvel {

/// What tells whether a file or folder is still what it was. Threads: as any value.
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

}  // namespace orvel
