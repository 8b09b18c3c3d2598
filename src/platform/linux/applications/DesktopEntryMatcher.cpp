#include "platform/linux/applications/DesktopEntryMatcher.hpp"

#include "platform/linux/applications/DesktopWindows.hpp"
#include "platform/linux/applications/ProcessFacts.hpp"

#include <glib.h>

#include <algorithm>
#include <initializer_list>

namespace orvel {
namespace {

std::string inSmallLetters(std::string text) {
  std::transform(text.begin(), text.end(), text.begin(), g_ascii_tolower);
  return text;
}

}  // namespace

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

}  // namespace orvel
