#pragma once

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

}  // namespace orvel
