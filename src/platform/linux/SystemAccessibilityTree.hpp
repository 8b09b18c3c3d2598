#pragma once

#include "input/AccessibilityTree.hpp"

namespace orvel {

class X11Connection;

class SystemAccessibilityTree final : public AccessibilityTree {
 public:
  explicit SystemAccessibilityTree(X11Connection& connection);

  std::optional<AccessibleElement> elementAt(Point position) override;

 private:
  X11Connection& connection_;
};

}  // namespace orvel
