#pragma once

#include "base/Guarded.hpp"
#include "platform/linux/files/Files.hpp"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orvel {

/// What the index of an icon theme says: its folders and what sizes they are for.
///
/// Threads: as any value.
struct IconTheme {
  enum class Type { fixed, scalable, threshold };

  struct Folder {
    std::string name = {};  ///< Relative to the theme.
    int size = 0;
    int scale = 1;
    Type type = Type::threshold;
    int least = 0;
    int greatest = 0;
    int threshold = 2;

    /// How many pixels an icon of this folder is away from being made for `pixels`; 0 when it is.
    int distanceTo(int pixels) const;
  };

  std::vector<std::string> parents = {};
  std::vector<Folder> folders = {};

  /// Reads the text of an index. Nothing when it is damaged.
  static std::optional<IconTheme> parse(const std::string& text);
};

/// The icons of the installed themes. What a theme has is remembered until one of its main folders changes.
///
/// Threads: any.
class IconThemes {
 public:
  explicit IconThemes(const DataFolders& folders);

  /// Whether the icon is to be taken from this file.
  using Choice = std::function<bool(const std::string& path)>;

  /// The file that holds an icon for a square of that many pixels: from the theme, those that it inherits, the theme
  /// that all programs bring their icons to, any other theme, or from no theme. Of several, the first that `choice`
  /// takes. Nothing when there is none.
  std::optional<std::string> find(const std::string& icon, int pixels, const std::string& theme, const Choice& choice);

 private:
  /// A folder of a theme that is really there.
  struct Place {
    std::string path;
    IconTheme::Folder folder;
  };

  struct Installed {
    std::vector<std::string> parents;
    std::vector<Place> places;
    std::vector<std::optional<FileStamp>> stamps;
  };

  using Memory = std::map<std::string, std::shared_ptr<const Installed>>;  // by name

  std::vector<std::string> chainOf(const std::string& theme);
  std::vector<std::string> allThemes() const;
  std::shared_ptr<const Installed> installed(const std::string& theme);
  Installed readTheme(const std::string& theme) const;
  std::vector<std::optional<FileStamp>> stampsOf(const std::string& theme) const;
  std::optional<std::string> findIn(const std::string& theme, const std::string& icon, int pixels,
                                    const Choice& choice);

  std::vector<std::string> bases_;      // hold themes
  std::vector<std::string> themeless_;  // hold icons of no theme
  Guarded<Memory> memory_;
};

}  // namespace orvel
