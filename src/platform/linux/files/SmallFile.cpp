#include "platform/linux/files/SmallFile.hpp"

#include "platform/linux/OwnedDescriptor.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>

namespace orvel {
namespace {

constexpr time_t settlingTime = 2;  // seconds; some file systems count in twos

bool isSmallFile(const struct stat& status, std::size_t limit) {
  return S_ISREG(status.st_mode) && static_cast<std::uint64_t>(status.st_size) <= limit;
}

std::string readUpTo(int descriptor, std::size_t limit) {
  std::string content(limit, '\0');
  std::size_t length = 0;
  while (length < limit) {
    const ssize_t count = read(descriptor, content.data() + length, limit - length);
    if (count <= 0) break;
    length += static_cast<std::size_t>(count);
  }
  content.resize(length);
  return content;
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

bool FileStamp::isSettled() const {
  return std::time(nullptr) > seconds + settlingTime;
}

std::optional<std::string> readSmallFile(const std::string& path, std::size_t limit) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0 || !isSmallFile(status, limit)) return std::nullopt;
  // It may have become something else meanwhile, so opening must not wait, and what was opened is looked at again.
  const OwnedDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  if (file.number() < 0 || fstat(file.number(), &status) != 0 || !isSmallFile(status, limit)) return std::nullopt;
  return readUpTo(file.number(), static_cast<std::size_t>(status.st_size));
}

std::string readBeginning(const std::string& path, std::size_t limit) {
  const OwnedDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  return file.number() < 0 ? std::string() : readUpTo(file.number(), limit);
}

}  // namespace orvel
