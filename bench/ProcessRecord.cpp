#include "bench/ProcessRecord.hpp"

#include <time.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace orvel::bench {
namespace {

/// The lines "Key: value" of a file by their keys.
std::map<std::string, std::string> fieldsOf(const std::filesystem::path& file) {
  std::map<std::string, std::string> fields;
  std::ifstream lines(file);
  for (std::string line; std::getline(lines, line);) {
    const std::size_t colon = line.find(':');
    if (colon == std::string::npos) continue;
    const std::size_t value = line.find_first_not_of(" \t", colon + 1);
    fields[line.substr(0, colon)] = value == std::string::npos ? std::string() : line.substr(value);
  }
  return fields;
}

std::int64_t numberIn(const std::map<std::string, std::string>& fields, const std::string& key) {
  const auto found = fields.find(key);
  std::int64_t number = 0;
  if (found == fields.end() || !(std::istringstream(found->second) >> number)) {
    throw std::runtime_error("the kernel does not report " + key);
  }
  return number;
}

std::filesystem::path folderOf(pid_t process) {
  return std::filesystem::path("/proc") / std::to_string(process);
}

}  // namespace

std::map<pid_t, ThreadRecord> threadsOf(pid_t process) {
  std::map<pid_t, ThreadRecord> threads;
  for (const auto& thread : std::filesystem::directory_iterator(folderOf(process) / "task")) {
    const auto fields = fieldsOf(thread.path() / "status");
    if (fields.empty()) continue;  // it has ended meanwhile
    threads[std::stoi(thread.path().filename())] = {.name = fields.at("Name"),
                                                    .sleeps = numberIn(fields, "voluntary_ctxt_switches")};
  }
  return threads;
}

MemoryRecord memoryOf(pid_t process) {
  const auto fields = fieldsOf(folderOf(process) / "smaps_rollup");
  return {.resident = numberIn(fields, "Rss"),
          .proportional = numberIn(fields, "Pss"),
          .privateDirty = numberIn(fields, "Private_Dirty"),
          .anonymous = numberIn(fields, "Anonymous")};
}

std::chrono::nanoseconds processorTimeOf(pid_t process) {
  clockid_t clock{};
  timespec time{};
  if (clock_getcpuclockid(process, &clock) != 0 || clock_gettime(clock, &time) != 0) {
    throw std::runtime_error("a process has gone");
  }
  return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

}  // namespace orvel::bench
