#pragma once

#include <algorithm>

namespace orvel {

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
