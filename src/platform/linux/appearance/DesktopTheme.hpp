#pragma once

#include "ui/Appearance.hpp"

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace orvel {

/// What the desktop has all programs look like.
struct DesktopTheme {
  std::string name;                      ///< Empty when it does not say.
  std::string font;                      ///< Empty when it does not say.
  std::optional<std::string> iconTheme;  ///< Empty for none; nothing when it does not say.

  friend bool operator==(const DesktopTheme&, const DesktopTheme&) = default;
};

/// The theme that the desktop publishes to all programs. Threads: any.
class ThemeSettings {
 public:
  virtual ~ThemeSettings() = default;

  /// The newest that the backend knows of, without waiting.
  virtual DesktopTheme theme() const = 0;

  /// Calls `handler` whenever the theme has changed. Called once. Threads: the handler runs on that of the
  /// backend.
  virtual void observe(std::function<void()> handler) = 0;
};

/// Whether a theme calls itself dark, as "Adwaita-dark" does; "Darkroom" and "Arc-Darker" do not. Threads: any.
bool isDarkTheme(std::string_view name);

/// The font of a description such as "Noto Sans Bold 10.5", without its style. Nothing when that is damaged, has no
/// size in points, or one that is out of range. Threads: any.
std::optional<DesktopFont> parseFontDescription(std::string_view text);

}  // namespace orvel
