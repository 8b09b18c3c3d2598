#include "platform/linux/applications/ProgramList.hpp"

#include "base/UTF8.hpp"
#include "platform/linux/applications/DesktopEntryMatcher.hpp"
#include "platform/linux/applications/ProcessFacts.hpp"

#include <algorithm>
#include <map>
#include <unordered_map>
#include <utility>

namespace orvel {
namespace {

/// Above every number of a process.
constexpr std::uint64_t windowWithoutProcess = std::uint64_t{1} << 32;
constexpr int longestParentChain = 16;

/// Puts windows together to programs.
class Grouping {
 public:
  Grouping(const std::vector<ManagedWindow>& windows, DesktopEntries& entries) : matcher_(entries) {
    for (const ManagedWindow& window : windows) byID_.emplace(window.id, &window);
  }

  void add(const ManagedWindow& window) {
    if (!window.isForPeople) return;
    const ManagedWindow& main = mainWindowOf(window);
    WindowedProgram program = programOf(main);
    if (program.identifier.empty() || !isValidUTF8(program.identifier)) return;
    const auto [place, isNew] = places_.emplace(std::pair(program.instance, program.identifier), programs_.size());
    if (isNew) programs_.push_back(std::move(program));
    WindowedProgram& known = programs_[place->second];
    known.windows.push_back(window.id);
    if (&main == &window && window.isInTaskbar) known.isRegular = true;
  }

  std::vector<WindowedProgram> programs() && { return std::move(programs_); }

 private:
  /// The window that a dialog serves, itself for others. Dialogs of another program, as a portal shows them, stand for
  /// themselves.
  const ManagedWindow& mainWindowOf(const ManagedWindow& window) const {
    const ManagedWindow* main = &window;
    for (int i = 0; i < longestParentChain && main->owner != 0; ++i) {
      const auto owner = byID_.find(main->owner);
      if (owner == byID_.end() || owner->second->process != window.process) break;
      main = owner->second;
    }
    return *main;
  }

  WindowedProgram programOf(const ManagedWindow& window) {
    WindowedProgram program;
    program.instance =
        window.process > 0 ? static_cast<std::uint64_t>(window.process) : windowWithoutProcess | window.id;
    if (const auto* found = matcher_.match(window, factsOf(window.process))) {
      program.identifier = found->identifier;
      program.name = found->entry->name;
      program.location = found->path;
    } else {
      program.identifier = window.className.empty() ? window.instanceName : window.className;
      program.name = program.identifier;
    }
    return program;
  }

  const ProcessFacts& factsOf(pid_t process) {
    const auto [facts, isNew] = facts_.try_emplace(process);
    if (isNew && process > 0) facts->second = ProcessFacts::of(process);
    return facts->second;
  }

  const DesktopEntryMatcher matcher_;
  std::unordered_map<WindowID, const ManagedWindow*> byID_;
  std::unordered_map<pid_t, ProcessFacts> facts_;
  std::map<std::pair<std::uint64_t, std::string>, std::size_t> places_;
  std::vector<WindowedProgram> programs_;
};

}  // namespace

std::optional<std::vector<WindowedProgram>> ProgramList::read() const {
  const auto windows = windows_.read();
  if (!windows) return std::nullopt;
  if (windows->empty()) return std::vector<WindowedProgram>();
  Grouping grouping(*windows, entries_);
  for (const ManagedWindow& window : *windows) grouping.add(window);
  return std::move(grouping).programs();
}

}  // namespace orvel
