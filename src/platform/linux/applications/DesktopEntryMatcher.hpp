#pragma once

#include "platform/linux/applications/DesktopEntries.hpp"

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace orvel {

struct ManagedWindow;
struct ProcessFacts;

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

}  // namespace orvel
