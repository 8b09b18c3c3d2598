#pragma once

#include <functional>
#include <optional>
#include <string>

namespace orvel {

/// The font in which a desktop shows its own texts.
struct DesktopFont {
  std::string family;
  double size = 0;  ///< In points.

  friend bool operator==(const DesktopFont&, const DesktopFont&) = default;
};

/// How the desktop wants its programs to look. Threads: the main thread.
class Appearance {
 public:
  virtual ~Appearance() = default;

  /// Whether light texts on dark ground are wanted; nothing where the desktop does not say.
  virtual std::optional<bool> isDark() const = 0;

  /// Nothing where the desktop does not say.
  virtual std::optional<DesktopFont> font() const = 0;

  /// Has `changed` called, on the main thread, whenever one of these may have changed. Called once.
  virtual void observe(std::function<void()> changed) = 0;
};

}  // namespace orvel
