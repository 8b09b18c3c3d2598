#pragma once

#include "input/AccessibilityTree.hpp"
#include "platform/macos/CFPointer.hpp"

#include <ApplicationServices/ApplicationServices.h>

#include <memory>
#include <type_traits>

namespace orvel {

class Cancellation;

/// The user interface of all programs, by the system's accessibility. A program that does not answer within a quarter
/// of a second is asked no further.
///
/// Threads: `elementAt` one at a time. The main thread does the asking, and is waited for half a second at most.
class SystemAccessibilityTree final : public AccessibilityTree {
 public:
  SystemAccessibilityTree();

  std::optional<AccessibleElement> elementAt(Point position) override;

 private:
  const std::shared_ptr<std::remove_pointer_t<AXUIElementRef>> systemWide_;
  const std::shared_ptr<Cancellation> cancellation_;
};

}  // namespace orvel
