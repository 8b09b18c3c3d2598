#include "platform/linux/applications/ProgramList.hpp"

#include "base/UTF8.hpp"
#include "platform/linux/applications/DesktopEntries.hpp"
#include "platform/linux/applications/DesktopWindows.hpp"
#include "platform/linux/applications/ProcessFacts.hpp"

#include <glib.h>

#include <algorithm>
#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace orvel {
namespace {

/// Above every number of a process.
constexpr std::uint64_t windowWithoutProcess = std::uint64_t{1} << 32;
constexpr int longestParentChain = 16;

std::string inSmallLetters(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), g_ascii_tolower);
  return text;
}

/// Finds the desktop entry of the program that a window belongs to.
///
/// Threads: as any value.
class DesktopEntryMatcher {
 public:
  explicit DesktopEntryMatcher(DesktopEntries& entries);

  /// The entry of a window of that process, or null. Valid for as long as this object.
  const DesktopEntries::Found* match(const ManagedWindow& window, const ProcessFacts& process) const;

 private:
  using Index = std::unordered_map<std::string, const DesktopEntries::Found*>;  // by words in small letters

  void add(const DesktopEntries::Found& found);
  const DesktopEntries::Found* launchedBy(const std::string& path) const;
  const DesktopEntries::Found* named(const std::string& word) const;
  static const DesktopEntries::Found* lookUp(const Index& index, const std::string& word);

  const std::vector<std::string>& folders_;
  const std::vector<DesktopEntries::Found> entries_;
  Index byIdentifier_;
  Index byLastWord_;  // of identifiers such as org.example.Editor
  Index byWindowClass_;
  Index byProgram_;  // null for a program that several entries start
};

DesktopEntryMatcher::DesktopEntryMatcher(DesktopEntries& entries)
    : folders_(entries.folders()), entries_(entries.all()) {
  // Of two that fit, the one that is listed.
  for (const bool isListed : {true, false}) {
    for (const auto& found : entries_) {
      if (found.entry->isListed == isListed) add(found);
    }
  }
}

void DesktopEntryMatcher::add(const DesktopEntries::Found& found) {
  const std::string identifier = inSmallLetters(found.identifier);
  byIdentifier_.emplace(identifier, &found);
  const auto dot = identifier.rfind('.');
  if (dot != std::string::npos) byLastWord_.emplace(identifier.substr(dot + 1), &found);
  byWindowClass_.emplace(inSmallLetters(found.entry->windowClass), &found);
  // What runs in a terminal has no window of its own.
  if (found.entry->runsInTerminal) return;
  const auto [known, isNew] = byProgram_.emplace(inSmallLetters(found.entry->program), &found);
  if (!isNew && found.entry->isListed) known->second = nullptr;
}

const DesktopEntries::Found* DesktopEntryMatcher::match(const ManagedWindow& window,
                                                        const ProcessFacts& process) const {
  if (const auto* found = lookUp(byIdentifier_, window.gtkApplicationID)) return found;
  if (const auto* found = launchedBy(process.launchedEntry)) return found;
  // The instance first: it is what tells apart the programs that live in one browser.
  for (const std::string& word : {window.instanceName, window.className}) {
    if (const auto* found = lookUp(byWindowClass_, word)) return found;
  }
  for (const std::string& word : {window.instanceName, window.className}) {
    if (const auto* found = named(word)) return found;
  }
  return lookUp(byProgram_, process.program);
}

const DesktopEntries::Found* DesktopEntryMatcher::launchedBy(const std::string& path) const {
  if (!path.ends_with(DesktopEntry::suffix)) return nullptr;
  for (const std::string& folder : folders_) {
    if (!path.starts_with(folder + "/")) continue;
    return lookUp(byIdentifier_, DesktopEntry::identifierOf(path.substr(folder.size() + 1)));
  }
  // An entry from elsewhere, such as that of a program which starts with the desktop.
  return lookUp(byIdentifier_, DesktopEntry::identifierOf(path.substr(path.rfind('/') + 1)));
}

const DesktopEntries::Found* DesktopEntryMatcher::named(const std::string& word) const {
  const auto* found = lookUp(byIdentifier_, word);
  return found ? found : lookUp(byLastWord_, word);
}

const DesktopEntries::Found* DesktopEntryMatcher::lookUp(const Index& index, const std::string& word) {
  if (word.empty()) return nullptr;
  const auto found = index.find(inSmallLetters(word));
  return found == index.end() ? nullptr : found->second;
}

/// Puts windows together to programs.
class Grouping {
 public:
  Grouping(const std::vector<ManagedWindow>& windows, DesktopEntries& entries) : matcher_(entries) {
    for (const ManagedWindow& window : windows) byID_.emplace(window.id, &window);
  }

  void add(const ManagedWindow& window) {
    if (!window.isApplicationWindow) return;
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
