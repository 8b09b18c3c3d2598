#pragma once

#include <functional>
#include <string>

namespace orvel {

/// What the desktop has all programs look like. What it does not say is empty.
struct DesktopTheme {
  std::string name;
  std::string font;
  std::string iconTheme;

  friend bool operator==(const DesktopTheme&, const DesktopTheme&) = default;
};

/// The theme that the desktop publishes to all programs. Threads: any.
class ThemeSettings {
 public:
  virtual ~ThemeSettings() = default;

  /// Waits for the desktop.
  virtual DesktopTheme read() = 0;

  /// Calls `handler` whenever the theme may have changed. Called once. Threads: the handler runs on that of the
  /// backend.
  virtual void observe(std::function<void()> handler) = 0;
};

}  // namespace orvel
