#include "ui/PanelPlacement.hpp"

#include <algorithm>

namespace orvel::PanelPlacement {
namespace {

double kept(double start, double length, double from, double to) {
  return std::max(from, std::min(start, to - length));
}

/// Beside the icon on the axis on which its bar is thin.
double beside(double iconStart, double iconEnd, double length, double middle) {
  return (iconStart + iconEnd) / 2 <= middle ? iconEnd + gap : iconStart - gap - length;
}

}  // namespace

Point at(const Rect& icon, const Size& panel, const Monitor& monitor) {
  const Rect& free = monitor.free;
  const Point middle = monitor.whole.centre();
  const Point centre = icon.centre();
  // A bar at the left or the right takes its space away there, and the icon is in it.
  const bool isInSideBar = centre.x < free.minX() || centre.x > free.maxX();
  const double x = isInSideBar ? beside(icon.minX(), icon.maxX(), panel.width, middle.x) : centre.x - panel.width / 2;
  const double y = isInSideBar ? centre.y - panel.height / 2 : beside(icon.minY(), icon.maxY(), panel.height, middle.y);
  return {kept(x, panel.width, free.minX() + gap, free.maxX() - gap),
          kept(y, panel.height, free.minY() + gap, free.maxY() - gap)};
}

Rect usualCorner(const Monitor& monitor) {
  const bool barIsAtBottom = monitor.free.minY() <= monitor.whole.minY() && monitor.free.maxY() < monitor.whole.maxY();
  return {{monitor.whole.maxX(), barIsAtBottom ? monitor.whole.maxY() : monitor.whole.minY()}, {0, 0}};
}

}  // namespace orvel::PanelPlacement
