#include "program/HostProcess.hpp"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>

namespace orvel {
namespace {

std::size_t entriesOf(const std::filesystem::path& folder) {
  return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder), {}));
}

/// What the process has used in its own code and in the kernel's: the 14th and the 15th word of the file, of which the
/// second is a name in brackets.
std::int64_t processorTicksIn(const std::filesystem::path& stat) {
  std::ifstream file(stat);
  file.ignore(std::numeric_limits<std::streamsize>::max(), ')');
  std::string word;
  for (int number = 3; number <= 13; ++number) file >> word;
  std::int64_t own = 0;
  std::int64_t kernel = 0;
  file >> own >> kernel;
  return own + kernel;
}

std::vector<std::string> commandWith(std::vector<std::string> options) {
  options.insert(options.begin(), ORVEL_PROGRAM);
  return options;
}

}  // namespace

HostProcess::HostProcess(const VirtualDesktop& desktop, const ChildProcess::Environment& environment,
                         const std::vector<std::string>& options)
    : homeEnvironment_(desktop.environment()),
      process_({.command = commandWith(options), .environment = environment}) {}

HostProcess::HostProcess(const ChildProcess::Environment& environment, const std::vector<std::string>& options)
    : homeEnvironment_(environment), process_({.command = commandWith(options), .environment = environment}) {}

std::string HostProcess::code() const {
  ChildProcess asked({.command = {ORVEL_PROGRAM, "--pair"}, .environment = homeEnvironment_});
  asked.waitForExit();
  const std::string label = "Code:";
  const std::string& text = asked.output();
  const std::size_t start = text.find_first_not_of(' ', text.find(label) + label.size());
  std::string code = text.substr(start, text.find('\n', start) - start);
  std::erase(code, '-');
  return code;
}

HostProcess::Footprint HostProcess::footprint() const {
  const std::filesystem::path folder = "/proc/" + std::to_string(process_.pid());
  Footprint result{.threads = entriesOf(folder / "task"), .descriptors = entriesOf(folder / "fd")};
  std::ifstream rollup(folder / "smaps_rollup");
  for (std::string word; rollup >> word;) {
    if (word == "Private_Dirty:") rollup >> result.privateKilobytes;
  }
  result.processorTicks = processorTicksIn(folder / "stat");
  return result;
}

}  // namespace orvel
