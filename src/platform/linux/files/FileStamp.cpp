#include "platform/linux/files/FileStamp.hpp"

#include <sys/stat.h>

namespace orvel {
namespace {

constexpr time_t settlingTime = 2;  // seconds; some file systems count in twos

}  // namespace

std::optional<FileStamp> FileStamp::of(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return std::nullopt;
  return FileStamp{.device = status.st_dev,
                   .number = status.st_ino,
                   .size = status.st_size,
                   .seconds = status.st_mtim.tv_sec,
                   .nanoseconds = status.st_mtim.tv_nsec,
                   .isPlainFile = S_ISREG(status.st_mode)};
}

bool FileStamp::isSettled() const {
  return std::time(nullptr) > seconds + settlingTime;
}

}  // namespace orvel
