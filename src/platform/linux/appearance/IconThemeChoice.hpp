#pragma once

#include <string>

namespace orvel {

class ThemeSettings;

/// The icon theme that the user has chosen.
///
/// Threads: any; it is made by its owner. `name` waits for the file system and for the desktop.
class IconThemeChoice {
 public:
  explicit IconThemeChoice(ThemeSettings& settings);

  /// Its name: what KDE says on its own desktop, what the desktop publishes to all programs, or what GTK's own file
  /// says. Empty when nobody has chosen any.
  std::string name() const;

 private:
  ThemeSettings& settings_;
  const std::string configuration_;  // the user's folder of it
  const bool isKDE_;
};

}  // namespace orvel
