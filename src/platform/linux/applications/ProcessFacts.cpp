#include "platform/linux/applications/ProcessFacts.hpp"

#include "platform/linux/files/Files.hpp"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <sstream>
#include <string_view>
#include <system_error>

namespace orvel {
namespace {

constexpr std::size_t longestEnvironment = std::size_t{128} * 1024;
constexpr std::size_t longestStatus = 4096;
constexpr std::string_view launcherVariable = "GIO_LAUNCHED_DESKTOP_FILE_PID";
constexpr std::string_view deletedMark = " (deleted)";

/// The value of a variable among the lines of an environment, which end with zero bytes.
std::string_view valueOf(std::string_view name, std::string_view environment) {
  while (!environment.empty()) {
    const auto end = std::min(environment.find('\0'), environment.size());
    const std::string_view line = environment.substr(0, end);
    if (line.starts_with(name) && line.substr(name.size()).starts_with('=')) return line.substr(name.size() + 1);
    environment.remove_prefix(std::min(end + 1, environment.size()));
  }
  return {};
}

std::string programAt(const std::string& link) {
  std::array<char, PATH_MAX> buffer{};
  const ssize_t length = readlink(link.c_str(), buffer.data(), buffer.size());
  if (length <= 0) return {};
  std::string_view path(buffer.data(), static_cast<std::size_t>(length));
  if (path.ends_with(deletedMark)) path.remove_suffix(deletedMark.size());
  return std::string(path.substr(path.rfind('/') + 1));
}

std::string folderOf(const std::string& process) {
  return "/proc/" + process;
}

/// The session of a process that runs; nothing of one that has ended and is still listed.
std::optional<pid_t> sessionOf(const std::string& process) {
  const std::string line = readBeginning(folderOf(process) + "/stat", longestStatus);
  const auto name = line.rfind(')');
  if (name == std::string::npos) return std::nullopt;
  std::istringstream rest(line.substr(name + 1));
  char state = 0;
  pid_t parent = 0;
  pid_t group = 0;
  pid_t session = 0;
  rest >> state >> parent >> group >> session;
  return rest && state != 'Z' && state != 'X' ? std::optional(session) : std::nullopt;
}

bool isSuccessor(const std::string& other, pid_t process) {
  const auto session = sessionOf(other);
  if (!session || other == std::to_string(process)) return false;
  if (*session == process) return true;
  const std::string environment = readBeginning(folderOf(other) + "/environ", longestEnvironment);
  return valueOf(launcherVariable, environment) == std::to_string(process);
}

}  // namespace

ProcessFacts ProcessFacts::of(pid_t process) {
  const std::string folder = folderOf(std::to_string(process));
  ProcessFacts facts{.program = programAt(folder + "/exe")};
  const std::string environment = readBeginning(folder + "/environ", longestEnvironment);
  // Children inherit both, so the entry is that of the process whose number stands beside it.
  if (valueOf(launcherVariable, environment) == std::to_string(process)) {
    facts.launchedEntry = valueOf("GIO_LAUNCHED_DESKTOP_FILE", environment);
  }
  return facts;
}

bool hasSuccessors(pid_t process) {
  std::error_code error;
  for (std::filesystem::directory_iterator item("/proc", error), end; !error && item != end; item.increment(error)) {
    const std::string name = item->path().filename().string();
    const bool isProcess = name.find_first_not_of("0123456789") == std::string::npos;
    if (isProcess && isSuccessor(name, process)) return true;
  }
  return false;
}

}  // namespace orvel
