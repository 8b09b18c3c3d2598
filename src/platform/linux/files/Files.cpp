#include "platform/linux/files/Files.hpp"

#include "platform/linux/OwnedDescriptor.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>

namespace orvel {
namespace {

void addFolder(std::vector<std::string>& folders, std::string_view folder) {
  while (folder.size() > 1 && folder.ends_with('/')) folder.remove_suffix(1);
  const bool isKnown = std::find(folders.begin(), folders.end(), folder) != folders.end();
  if (folder.starts_with('/') && !isKnown) folders.emplace_back(folder);
}

/// Adds the folders of a list such as "/one:/two", each once.
void addFolders(std::vector<std::string>& folders, std::string_view list) {
  while (!list.empty()) {
    const auto end = std::min(list.find(':'), list.size());
    addFolder(folders, list.substr(0, end));
    list.remove_prefix(std::min(end + 1, list.size()));
  }
}

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

std::string environmentVariable(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : std::string(value);
}

std::string pathIn(const std::string& folder, std::string_view name) {
  std::string path = folder;
  path += '/';
  return path += name;
}

bool isFolder(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

ConfigurationFolders ConfigurationFolders::ofUser() {
  ConfigurationFolders folders;
  const std::string own = environmentVariable("XDG_CONFIG_HOME");
  folders.own = own.starts_with('/') ? own : environmentVariable("HOME") + "/.config";
  const std::string system = environmentVariable("XDG_CONFIG_DIRS");
  addFolders(folders.system, system.empty() ? "/etc/xdg" : system);
  return folders;
}

DataFolders DataFolders::ofUser() {
  DataFolders folders{.home = environmentVariable("HOME")};
  const std::string own = environmentVariable("XDG_DATA_HOME");
  addFolders(folders.shared, own.starts_with('/') ? own : folders.home + "/.local/share");
  const std::string system = environmentVariable("XDG_DATA_DIRS");
  addFolders(folders.shared, system.empty() ? "/usr/local/share:/usr/share" : system);
  return folders;
}

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
