#include "platform/linux/files/SmallFile.hpp"

#include "platform/linux/OwnedDescriptor.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>

namespace orvel {
namespace {

constexpr time_t settlingTime = 2;  // seconds; some file systems count in twos

bool isSmallFile(const struct stat& status, std::size_t limit) {
  return S_ISREG(status.st_mode) && static_cast<std::uint64_t>(status.st_size) <= limit;
}

/// Reads to the end or the limit. False when that fails; `content` is then what was read before.
bool readUpTo(int descriptor, std::size_t limit, std::string& content) {
  content.resize(limit);
  std::size_t length = 0;
  ssize_t count = 1;
  while (length < limit && count != 0) {
    count = read(descriptor, content.data() + length, limit - length);
    if (count > 0) length += static_cast<std::size_t>(count);
    if (count < 0 && errno != EINTR) break;
  }
  content.resize(length);
  return count >= 0;
}

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

bool isPlainFile(const std::string& path) {
  const auto stamp = FileStamp::of(path);
  return stamp && stamp->isPlainFile;
}

bool FileStamp::isSettled() const {
  return std::time(nullptr) > seconds + settlingTime;
}

std::optional<std::string> readSmallFile(const std::string& path, std::size_t limit) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0 || !isSmallFile(status, limit)) return std::nullopt;
  // It may have become something else meanwhile, so opening must not wait, and what was opened is looked at again.
  const OwnedDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  if (file.number() < 0 || fstat(file.number(), &status) != 0 || !isSmallFile(status, limit)) return std::nullopt;
  std::string content;
  if (!readUpTo(file.number(), static_cast<std::size_t>(status.st_size), content)) return std::nullopt;
  return content;
}

std::string readBeginning(const std::string& path, std::size_t limit) {
  const OwnedDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  std::string content;
  if (file.number() >= 0) readUpTo(file.number(), limit, content);
  return content;
}

}  // namespace orvel
