#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvel {

/// What the file of an installed program says of it.
struct ApplicationBundle {
  std::string identifier;
  std::optional<std::string> displayName;  ///< In the user's language.
  std::optional<std::string> name;
  bool isListed = true;  ///< False for one that is not for people to start; it still hides those of its identifier.
};

/// The installed programs on disk. Threads: any.
class ApplicationBundles {
 public:
  virtual ~ApplicationBundles() = default;

  /// The folders that hold them, the one that wins first.
  virtual std::vector<std::string> searchPaths() const = 0;

  /// What the names of bundles end with, such as ".app".
  virtual std::string_view suffix() const = 0;

  /// The names of all entries of a folder, relative to it and in the file system's order. Nothing when the folder
  /// cannot be read.
  virtual std::optional<std::vector<std::string>> list(const std::string& folder) = 0;

  /// What the bundle at `path` says. `entry` is its name as `list` gave it. Nothing when it is no bundle, is damaged,
  /// or has no identifier.
  virtual std::optional<ApplicationBundle> read(const std::string& path, const std::string& entry) = 0;
};

}  // namespace orvel
