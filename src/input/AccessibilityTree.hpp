#pragma once

#include "base/Geometry.hpp"

#include <optional>
#include <string>

namespace orvel {

/// What a program reports of one element of its user interface.
struct AccessibleElement {
  std::optional<std::string> role;  ///< In the words of macOS, such as "AXButton".
  std::optional<Point> position;    ///< Its left top corner, in global coordinates.
  std::optional<Size> size;
};

/// The user interface of all programs, as assistive technology sees it.
class AccessibilityTree {
 public:
  virtual ~AccessibilityTree() = default;

  /// The element that is seen at a place of the desktop. Nothing when there is none, when its program reports nothing,
  /// or takes too long to answer. Blocks, for a fraction of a second when a program hangs. Threads: one at a time.
  virtual std::optional<AccessibleElement> elementAt(Point position) = 0;
};

}  // namespace orvel
