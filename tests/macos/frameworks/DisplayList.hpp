#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <functional>
#include <optional>
#include <utility>
#include <vector>

/// The displays, in place of CoreGraphics.
namespace fake {

struct Display {
  CGDirectDisplayID id;
  CGRect bounds;
};

struct DisplayList {
  using Watcher = std::pair<CGDisplayReconfigurationCallBack, void*>;

  std::vector<Display> active;            ///< In any order.
  std::optional<CGDirectDisplayID> main;  ///< Otherwise the first one.
  bool isUnreadable = false;
  std::function<void()> whenCounted;  ///< What happens after somebody has asked how many there are.
  int questions = 0;                  ///< How often somebody asked for the list or for bounds.
  std::vector<Watcher> watchers;

  /// Another set of displays: reported before and after, once for each display.
  void become(std::vector<Display> displays, std::optional<CGDirectDisplayID> newMain = std::nullopt);
};

/// Tests set it anew.
DisplayList& displayList();

}  // namespace fake
