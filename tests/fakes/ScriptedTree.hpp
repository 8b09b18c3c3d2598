#pragma once

#include "input/AccessibilityTree.hpp"

#include <functional>
#include <optional>
#include <vector>

namespace orvel {

/// A tree of one element, which is wherever it is looked for.
class ScriptedTree final : public AccessibilityTree {
 public:
  std::optional<AccessibleElement> elementAt(Point position) override {
    asked.push_back(position);
    if (whenAsked) whenAsked();
    return element;
  }

  std::optional<AccessibleElement> element;
  std::vector<Point> asked;
  std::function<void()> whenAsked;  ///< What happens while the program is asked.
};

}  // namespace orvel
