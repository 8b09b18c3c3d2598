#include "platform/linux/applications/ProcessFacts.hpp"

#include "platform/linux/files/SmallFile.hpp"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstddef>
#include <string_view>

namespace orvel {
namespace {

constexpr std::size_t longestEnvironment = std::size_t{128} * 1024;
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

}  // namespace

ProcessFacts ProcessFacts::of(pid_t process) {
  const std::string folder = "/proc/" + std::to_string(process);
  ProcessFacts facts{.program = programAt(folder + "/exe")};
  const std::string environment = readBeginning(folder + "/environ", longestEnvironment);
  // Children inherit both, so the entry is that of the process whose number stands beside it.
  if (valueOf("GIO_LAUNCHED_DESKTOP_FILE_PID", environment) == std::to_string(process)) {
    facts.launchedEntry = valueOf("GIO_LAUNCHED_DESKTOP_FILE", environment);
  }
  return facts;
}

}  // namespace orvel
