#pragma once

#include "base/Geometry.hpp"
#include "ui/Symbol.hpp"

#include <functional>
#include <optional>

namespace orvel {

/// The icon in the tray or the menu bar that opens the panel. Threads: the main thread.
class StatusItem {
 public:
  virtual ~StatusItem() = default;

  struct Handlers {
    /// Somebody clicks on the icon.
    std::function<void()> activated;
    /// The desktop has said for the first time whether it has a place for the icon. Called once.
    std::function<void(bool hasPlace)> decided;
  };

  /// Shows the icon as soon as the desktop has a place for it, and again whenever that place has gone and come back.
  /// Called once.
  virtual void show(Symbol symbol, Handlers handlers) = 0;

  /// Shows another symbol.
  virtual void setSymbol(Symbol symbol) = 0;

  /// Whether the desktop has a place for the icon now.
  virtual bool isShown() const = 0;

  /// Where the icon is on the screen, in the toolkit's units; nothing where the desktop does not report it.
  virtual std::optional<Rect> place() const = 0;
};

}  // namespace orvel
