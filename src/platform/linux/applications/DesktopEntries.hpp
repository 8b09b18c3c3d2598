#pragma once

#include "base/Guarded.hpp"
#include "platform/linux/files/Files.hpp"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

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
  bool isListed = false;            ///< Listed for the user to start, on this desktop.
  bool runsInTerminal = false;

  /// Reads the text of an entry. Nothing when it is damaged, or not of a program.
  static std::optional<DesktopEntry> parse(const std::string& text);

  /// The desktop-file id of an entry, from its name relative to its folder: "kde4-foo" for "kde4/foo.desktop".
  static std::string identifierOf(std::string_view fileName);

  static constexpr std::string_view suffix = ".desktop";
};

/// The desktop entries in the `applications` folders of the data folders. What a file says is remembered for as long as
/// the file stays as it is.
///
/// Threads: any.
class DesktopEntries {
 public:
  struct Found {
    std::string path;
    std::string identifier;
    std::shared_ptr<const DesktopEntry> entry;  ///< Never null.
  };

  explicit DesktopEntries(const std::vector<std::string>& dataFolders);

  /// The one that wins first.
  const std::vector<std::string>& folders() const { return folders_; }

  /// The names of the entries of a folder and of the folders below it, relative to it. Nothing when the folder cannot
  /// be read; names that are no text are left out.
  std::optional<std::vector<std::string>> list(const std::string& folder);

  /// What the file at `path` says; null when it is no entry, or is damaged.
  std::shared_ptr<const DesktopEntry> read(const std::string& path);

  /// All usable ones, those that win before the others, each identifier once.
  std::vector<Found> all();

  /// The usable one with that identifier, or nothing.
  std::optional<Found> find(std::string_view identifier);

 private:
  struct Remembered {
    FileStamp stamp;
    std::shared_ptr<const DesktopEntry> entry;
  };

  using Memory = std::unordered_map<std::string, Remembered>;  // by path

  std::optional<std::string> locate(const std::string& folder, std::string_view name, int depth) const;
  void forgetAllBut(const std::string& folder, const std::vector<std::string>& names);

  std::vector<std::string> folders_;
  Guarded<Memory> memory_;
};

}  // namespace orvel
