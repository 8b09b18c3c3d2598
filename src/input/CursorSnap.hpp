#pragma once

#include "base/Executor.hpp"
#include "base/Geometry.hpp"

#include <atomic>
#include <optional>

namespace orvel {

class AccessibilityTree;
class PermissionGate;
class PointerDriver;
struct AccessibleElement;

/// Glides the pointer onto the centre of the control that it is near.
///
/// Threads: any; the snaps themselves run one after another on `queue`, which must have ended its work before this
/// goes.
class CursorSnap {
 public:
  struct Dependencies {
    Clock& clock;
    const PermissionGate& permission;
    PointerDriver& pointer;
    Executor& queue;
    AccessibilityTree& tree;
  };

  explicit CursorSnap(const Dependencies& dependencies);

  /// Requests one snap; returns at once. Ignored while this program may not post input, while the pointer's position is
  /// unknown, and while more requests wait than a person can make.
  void settle();

 private:
  void snap();
  std::optional<Point> target(Point pointer);
  void glide(Point centre);
  static std::optional<Rect> frame(const AccessibleElement& element);

  const Dependencies dependencies_;
  std::atomic<int> waiting_ = 0;
};

}  // namespace orvel
