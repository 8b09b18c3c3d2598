#pragma once

#include "platform/linux/accessibility/AccessibleObject.hpp"

#include <cstddef>
#include <deque>
#include <optional>

namespace orvel {

/// A walk through a user interface that comes to open menus soon.
///
/// Threads: one.
class MenuWalk {
 public:
  struct Step {
    AccessibleObject object;
    AccessibleRole role = AccessibleRole::filler;
  };

  /// Starts below `start`. Parts that do not show are left out where `tellsShowing`: where the program knows which do.
  MenuWalk(const AccessibleObject& start, bool tellsShowing);

  /// The next element, or nothing at the end, which comes in any case.
  std::optional<Step> next();

  /// Goes on below `step` alone.
  void narrow(const Step& step);

 private:
  void enqueueChildrenOf(const AccessibleObject& object);

  const bool tellsShowing_;
  std::size_t steps_ = 0;
  std::deque<Step> waiting_;
  std::optional<AccessibleObject> last_;  // whose children are not asked for before they are needed
};

}  // namespace orvel
