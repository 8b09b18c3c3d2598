#pragma once

#include "input/AccessibilityTree.hpp"
#include "platform/macos/CFPointer.hpp"

#include <ApplicationServices/ApplicationServices.h>

namespace orvel {

/// The user interface of all programs, by the system's accessibility. A program that does not answer within a quarter
/// of a second is asked no further.
///
/// Threads: `elementAt` one at a time.
class SystemAccessibilityTree final : public AccessibilityTree {
 public:
  SystemAccessibilityTree();

  std::optional<AccessibleElement> elementAt(Point position) override;

 private:
  const CFPointer<AXUIElementRef> everything_;
};

}  // namespace orvel
