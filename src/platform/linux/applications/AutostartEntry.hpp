#pragma once

#include <string>
#include <vector>

namespace orvel {

/// An entry by which a desktop starts a program at login. Threads: as any value.
struct AutostartEntry {
  std::string name;
  std::string icon;
  std::string program;                 ///< An absolute path.
  std::vector<std::string> arguments;  ///< What it is started with.
  bool isHidden = false;               ///< Has the desktop forget entries of the same name in folders of less weight.

  /// The text of its file.
  std::string text() const;

  /// Whether the desktop of this login starts a program by an entry with that text: not if it is damaged, switched off,
  /// meant for other desktops, or of a program that is missing.
  static bool starts(const std::string& text);
};

}  // namespace orvel
