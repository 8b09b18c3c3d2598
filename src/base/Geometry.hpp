#pragma once

#include <algorithm>

namespace orvel {

/// A place on the desktop in points: the origin is the left top of the main display, y grows downwards.
struct Point {
  double x = 0;
  double y = 0;

  friend bool operator==(const Point&, const Point&) = default;
};

struct Size {
  double width = 0;
  double height = 0;

  friend bool operator==(const Size&, const Size&) = default;
};

struct Rect {
  Point origin;
  Size size;

  double minX() const { return origin.x; }
  double minY() const { return origin.y; }
  double maxX() const { return origin.x + size.width; }
  double maxY() const { return origin.y + size.height; }

  Point centre() const { return {origin.x + size.width / 2, origin.y + size.height / 2}; }

  /// The right and the bottom edge are outside.
  bool contains(Point point) const {
    return point.x >= minX() && point.x < maxX() && point.y >= minY() && point.y < maxY();
  }

  /// The smallest rectangle that holds both.
  Rect unionWith(const Rect& other) const {
    const double left = std::min(minX(), other.minX());
    const double top = std::min(minY(), other.minY());
    return {{left, top}, {std::max(maxX(), other.maxX()) - left, std::max(maxY(), other.maxY()) - top}};
  }

  friend bool operator==(const Rect&, const Rect&) = default;
};

}  // namespace orvel
