#include "platform/linux/SystemAccessibilityTree.hpp"

#include "platform/linux/X11Connection.hpp"

namespace orvel {

SystemAccessibilityTree::SystemAccessibilityTree(X11Connection& connection) : connection_(connection) {}

std::optional<AccessibleElement> SystemAccessibilityTree::elementAt(Point) {
  return connection_.isAlive() ? std::nullopt : std::nullopt;
}

}  // namespace orvel
