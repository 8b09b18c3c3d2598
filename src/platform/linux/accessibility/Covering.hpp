#pragma once

#include "base/Geometry.hpp"

namespace orvel {

/// Whether a point is within a rectangle; the right and the bottom edge are outside.
inline bool covers(const Rect& rect, Point point) {
  return point.x >= rect.minX() && point.x < rect.maxX() && point.y >= rect.minY() && point.y < rect.maxY();
}

}  // namespace orvel
