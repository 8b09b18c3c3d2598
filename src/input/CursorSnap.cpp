#include "input/CursorSnap.hpp"

#include "input/AccessibilityTree.hpp"
#include "input/PermissionGate.hpp"
#include "input/PointerDriver.hpp"

#include <algorithm>
#include <array>
#include <string_view>

namespace orvel {
namespace {

// Not text fields, sliders, images, rows or anything else in which the place of the pointer matters.
constexpr std::array<std::string_view, 11> snappable = {
    "AXButton", "AXCheckBox",  "AXRadioButton",        "AXPopUpButton", "AXMenuItem",  "AXMenuBarItem",
    "AXLink",   "AXTabButton", "AXDisclosureTriangle", "AXIncrementor", "AXColorWell",
};

constexpr double nearestSquared = 9;       // 3 points: already there
constexpr double farthestSquared = 12100;  // 110 points
constexpr int glideSteps = 6;
constexpr Seconds glidePause{0.015};
constexpr int mostWaiting = 16;

double squaredDistance(Point a, Point b) {
  return (a.x - b.x) * (a.x - b.x) + (a.y - b.y) * (a.y - b.y);
}

/// Fast at first, slow at the end; exactly 1 at the last step.
double easedOut(int step) {
  const double rest = 1 - static_cast<double>(step) / glideSteps;
  return 1 - rest * rest * rest;
}

}  // namespace

CursorSnap::CursorSnap(const Dependencies& dependencies) : dependencies_(dependencies) {}

void CursorSnap::settle() {
  if (!dependencies_.permission.cachedTrust()) return;
  if (waiting_ >= mostWaiting) return;
  ++waiting_;
  dependencies_.queue.post([this] {
    snap();
    --waiting_;
  });
}

void CursorSnap::snap() {
  const auto pointer = dependencies_.pointer.currentAuthoritative();
  if (!pointer) return;
  if (const auto centre = target(*pointer)) glide(*centre);
}

std::optional<Point> CursorSnap::target(Point pointer) {
  const auto element = dependencies_.tree.elementAt(pointer);
  if (!element || !element->role) return std::nullopt;
  if (std::find(snappable.begin(), snappable.end(), *element->role) == snappable.end()) return std::nullopt;
  const auto rect = frame(*element);
  if (!rect) return std::nullopt;
  const double distance = squaredDistance(rect->centre(), pointer);
  if (distance > nearestSquared && distance <= farthestSquared) return rect->centre();
  return std::nullopt;
}

void CursorSnap::glide(Point centre) {
  // Read anew: it may have moved while the program was asked.
  const auto start = dependencies_.pointer.currentAuthoritative();
  if (!start) return;
  const bool dragging = dependencies_.pointer.isLeftButtonDown();
  for (int step = 1; step <= glideSteps; ++step) {
    const double share = easedOut(step);
    dependencies_.pointer.place({start->x + (centre.x - start->x) * share, start->y + (centre.y - start->y) * share},
                                dragging);
    dependencies_.clock.sleep(glidePause);
  }
}

std::optional<Rect> CursorSnap::frame(const AccessibleElement& element) {
  if (!element.position || !element.size) return std::nullopt;
  return Rect{*element.position, *element.size};
}

}  // namespace orvel
