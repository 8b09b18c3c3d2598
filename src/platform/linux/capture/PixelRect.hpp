#pragma once

#include <algorithm>

namespace orvel {

/// A rectangle of whole pixels of the X screen.
struct PixelRect {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;

  bool isEmpty() const { return width <= 0 || height <= 0; }

  /// What both have in common; an empty one when that is nothing.
  PixelRect intersectedWith(const PixelRect& other) const {
    const int left = std::max(x, other.x);
    const int top = std::max(y, other.y);
    return {left, top, std::max(0, std::min(x + width, other.x + other.width) - left),
            std::max(0, std::min(y + height, other.y + other.height) - top)};
  }

  friend bool operator==(const PixelRect&, const PixelRect&) = default;
};

/// A band of rows of a picture, the first and the one behind the last.
struct Rows {
  int begin = 0;
  int end = 0;

  bool isEmpty() const { return end <= begin; }

  /// The smallest band that holds both.
  Rows unionWith(const Rows& other) const {
    if (isEmpty()) return other;
    if (other.isEmpty()) return *this;
    return {std::min(begin, other.begin), std::max(end, other.end)};
  }
};

}  // namespace orvel
