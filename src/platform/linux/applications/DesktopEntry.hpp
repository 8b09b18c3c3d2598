#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace orvel {

/// What a desktop entry says of its program.
///
/// Threads: as any value.
struct DesktopEntry {
  std::optional<std::string> name;  ///< In the user's language.
  std::string icon;                 ///< A name in the icon theme, or an absolute path.
  std::string windowClass;          ///< What it says that its windows are of.
  std::string program;              ///< The name of its executable file, without folders.
  bool isUsable = false;            ///< False for one that the user has removed, or whose program is missing.
  bool isListed = false;            ///< For people to start, and on this desktop.
  bool runsInTerminal = false;

  /// Reads the text of an entry. Nothing when it is damaged, or not of a program.
  static std::optional<DesktopEntry> parse(const std::string& text);

  /// The desktop-file id of an entry, from its name relative to its folder: "kde4-foo" for "kde4/foo.desktop".
  static std::string identifierOf(std::string_view fileName);

  static constexpr std::string_view suffix = ".desktop";
};

}  // namespace orvel
