#pragma once

#include "input/AccessibilityTree.hpp"
#include "platform/linux/accessibility/AccessibleObject.hpp"
#include "platform/linux/accessibility/WindowAtPoint.hpp"

#include <optional>

namespace orvel {

/// The search for the element at a point in the user interface of one program.
///
/// What the program says is not believed to be a tree: depth, number and time are bounded.
///
/// Threads: one.
class ElementSearch {
 public:
  /// `window` is the one at `point`, and belongs to `program`.
  ElementSearch(const AccessibleObject& program, const WindowAtPoint& window, Point point);

  std::optional<AccessibleElement> find() const;

 private:
  /// A part of the tree that fills a window, and what its program means by a place in it.
  struct View {
    AccessibleObject root;
    CoordinateType type = CoordinateType::screen;
    Point origin;  ///< Where the program's 0, 0 is on the desktop.
  };

  std::optional<View> viewOf(const AccessibleObject& root, bool isWindow) const;
  std::optional<View> mainView() const;
  double mismatch(const AccessibleObject& shown) const;
  std::optional<View> popUpView() const;
  std::optional<AccessibleElement> findInMenus() const;
  AccessibleElement findIn(const View& view) const;
  AccessibleObject deepest(const View& view) const;
  std::optional<AccessibleObject> childAt(const View& view, const AccessibleObject& object) const;
  AccessibleObject actionable(const View& view, const AccessibleObject& object) const;
  AccessibleElement describe(const View& view, const AccessibleObject& object) const;

  const AccessibleObject program_;
  const WindowAtPoint window_;
  const Point point_;
  const bool usesWindowCoordinates_;  // its places are relative to its windows, whichever type is asked for
};

}  // namespace orvel
