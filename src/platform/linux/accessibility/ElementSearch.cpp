#include "platform/linux/accessibility/ElementSearch.hpp"

#include "platform/linux/accessibility/AccessibleObject.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <deque>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

namespace orvel {
namespace {

constexpr int deepestNesting = 64;
constexpr int farthestAncestor = 8;

// By how many points the frame of a window may differ between its program and the desktop: some toolkits count the
// frame that the window manager adds, some the shadow, and some neither.
constexpr double windowTolerance = 200;
constexpr double popUpTolerance = 64;

double difference(const Size& a, const Size& b) {
  return std::abs(a.width - b.width) + std::abs(a.height - b.height);
}

double difference(const Rect& a, const Rect& b) {
  return std::abs(a.origin.x - b.origin.x) + std::abs(a.origin.y - b.origin.y) + difference(a.size, b.size);
}

constexpr std::size_t mostSteps = 400;

/// A walk through a user interface that comes to open menus soon.
///
/// Threads: one.
class MenuWalk {
 public:
  struct Step {
    AccessibleObject object;
    AccessibleRole role = AccessibleRole::filler;
  };

  /// Starts below `start`. With `skipsHidden` hidden parts are left out, for programs that report which are shown.
  MenuWalk(const AccessibleObject& start, bool skipsHidden);

  /// The next element, or nothing at the end, which comes in any case.
  std::optional<Step> next();

  /// Goes on below `step` alone.
  void narrow(const Step& step);

 private:
  void enqueueChildrenOf(const AccessibleObject& object);

  const bool skipsHidden_;
  std::size_t steps_ = 0;
  std::deque<Step> waiting_;
  std::optional<AccessibleObject> last_;  // whose children are not asked for before they are needed
};

MenuWalk::MenuWalk(const AccessibleObject& start, bool skipsHidden) : skipsHidden_(skipsHidden), last_(start) {}

std::optional<MenuWalk::Step> MenuWalk::next() {
  if (const auto last = std::exchange(last_, std::nullopt)) enqueueChildrenOf(*last);
  if (waiting_.empty()) return std::nullopt;
  Step step = std::move(waiting_.front());
  waiting_.pop_front();
  last_ = step.object;
  return step;
}

void MenuWalk::narrow(const Step& step) {
  waiting_.clear();
  last_ = step.object;
}

void MenuWalk::enqueueChildrenOf(const AccessibleObject& object) {
  for (const AccessibleObject& child : object.children()) {
    if (++steps_ > mostSteps) return;
    const auto role = child.role();
    if (!role || isCollection(*role)) continue;
    if (skipsHidden_ && !child.isShowing()) continue;
    waiting_.insert(isOfMenu(*role) ? waiting_.begin() : waiting_.end(), Step{child, *role});
  }
}

}  // namespace

ElementSearch::ElementSearch(const AccessibleObject& program, const WindowAtPoint& window, Point point)
    : program_(program), window_(window), point_(point), usesWindowCoordinates_(program.toolkit() == "GTK") {}

std::optional<AccessibleElement> ElementSearch::find() const {
  const auto view = window_.isPopUp ? popUpView() : mainView();
  if (view) return findIn(*view);
  return window_.isPopUp ? findInMenus() : std::nullopt;
}

AccessibleElement ElementSearch::findIn(const View& view) const {
  return describe(view, actionable(view, deepest(view)));
}

std::optional<ElementSearch::View> ElementSearch::viewOf(const AccessibleObject& root, bool isWindow) const {
  if (!usesWindowCoordinates_) return View{.root = root, .type = CoordinateType::screen, .origin = {}};
  const auto extents = root.extents(CoordinateType::window);
  if (!extents) return std::nullopt;
  // What the window has more than its content is a border around it, or a shadow that is not reported.
  const Size border{window_.frame.size.width - extents->size.width, window_.frame.size.height - extents->size.height};
  // A window that keeps its edges free counts from within them, in newer releases its own place, too.
  const Point edge = isWindow ? extents->origin : Point{};
  return View{.root = root,
              .type = CoordinateType::window,
              .origin = {window_.frame.origin.x + border.width / 2 - extents->origin.x - edge.x,
                         window_.frame.origin.y + border.height / 2 - extents->origin.y - edge.y}};
}

/// By how much the extents of a part of the program differ from the frame of the window.
double ElementSearch::mismatch(const AccessibleObject& shown) const {
  const auto extents = shown.extents(usesWindowCoordinates_ ? CoordinateType::window : CoordinateType::screen);
  if (!extents) return std::numeric_limits<double>::infinity();
  return usesWindowCoordinates_ ? difference(extents->size, window_.frame.size) : difference(*extents, window_.frame);
}

/// Of the program's windows the one at the point: preferably one with its title, and the most similar of these.
std::optional<ElementSearch::View> ElementSearch::mainView() const {
  std::optional<AccessibleObject> best;
  bool bestHasTitle = false;
  double least = windowTolerance;
  for (const AccessibleObject& shown : program_.children()) {
    const double distance = mismatch(shown);
    if (distance > windowTolerance) continue;
    const bool hasTitle = !window_.title.empty() && shown.name() == window_.title;
    if (hasTitle < bestHasTitle || (hasTitle == bestHasTitle && distance > least)) continue;
    best = shown;
    bestHasTitle = hasTitle;
    least = distance;
  }
  return best ? viewOf(*best, true) : std::nullopt;
}

/// A menu, or whatever else opens, that the program shows as a part of its own.
std::optional<ElementSearch::View> ElementSearch::popUpView() const {
  if (!usesWindowCoordinates_) {
    for (const AccessibleObject& shown : program_.children()) {
      if (mismatch(shown) <= popUpTolerance) return viewOf(shown, false);
    }
    return std::nullopt;
  }
  MenuWalk walk(program_, false);
  while (const auto step = walk.next()) {
    if (step->role == AccessibleRole::menu && mismatch(step->object) <= popUpTolerance)
      return viewOf(step->object, false);
  }
  return std::nullopt;
}

/// Where menus are parts of the window that opened them, which knows nothing of the one that lies on top of it.
std::optional<AccessibleElement> ElementSearch::findInMenus() const {
  std::optional<AccessibleObject> found;
  MenuWalk walk(program_, true);
  while (const auto step = walk.next()) {
    if (!isOfMenu(step->role)) continue;
    const auto extents = step->object.extents(CoordinateType::screen);
    if (!extents || !extents->contains(point_) || !window_.frame.contains(extents->origin)) continue;
    found = step->object;
    walk.narrow(*step);
  }
  if (!found) return std::nullopt;
  return describe({.root = *found, .type = CoordinateType::screen, .origin = {}}, *found);
}

AccessibleObject ElementSearch::deepest(const View& view) const {
  AccessibleObject object = view.root;
  for (int depth = 0; depth < deepestNesting; ++depth) {
    const auto child = childAt(view, object);
    if (!child || *child == object) break;
    object = *child;
  }
  return object;
}

std::optional<AccessibleObject> ElementSearch::childAt(const View& view, const AccessibleObject& object) const {
  const Point place{point_.x - view.origin.x, point_.y - view.origin.y};
  auto known = object.objectAt(place, view.type);
  if (known || !usesWindowCoordinates_) return known;
  // This toolkit finds only elements that were listed before.
  const std::vector<AccessibleObject> children = object.children();
  known = object.objectAt(place, view.type);
  if (known) return known;
  const auto atPlace = [&](const AccessibleObject& child) {
    const auto extents = child.extents(view.type);
    return extents && extents->contains(place);
  };
  const auto topmost = std::find_if(children.rbegin(), children.rend(), atPlace);
  return topmost != children.rend() ? std::optional(*topmost) : std::nullopt;
}

/// Of what is hit only in its label, or the like, the thing itself.
AccessibleObject ElementSearch::actionable(const View& view, const AccessibleObject& object) const {
  AccessibleObject candidate = object;
  for (int step = 0; step < farthestAncestor; ++step) {
    const auto role = candidate.role();
    if (!role) return object;
    if (isActionable(*role)) {
      const auto extents = candidate.extents(view.type);
      const Point place{point_.x - view.origin.x, point_.y - view.origin.y};
      // The page of a tab may be reported as a part of the tab, and is somewhere else.
      return step == 0 || (extents && extents->contains(place)) ? candidate : object;
    }
    if (!isDecoration(*role)) return object;
    const auto parent = candidate.parent();
    if (!parent) return object;
    candidate = *parent;
  }
  return object;
}

AccessibleElement ElementSearch::describe(const View& view, const AccessibleObject& object) const {
  const auto role = object.role();
  if (!role) return {};
  const auto parent = isOfMenu(*role) ? object.parent() : std::nullopt;
  AccessibleElement element{.role = axRole(*role, parent ? parent->role() : std::nullopt), .position = {}, .size = {}};
  if (const auto extents = object.extents(view.type)) {
    element.position = Point{view.origin.x + extents->origin.x, view.origin.y + extents->origin.y};
    element.size = extents->size;
  }
  return element;
}

}  // namespace orvel
