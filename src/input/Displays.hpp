#pragma once

#include "base/Geometry.hpp"

#include <memory>
#include <vector>

namespace orvel {

/// The screens at one moment, in global coordinates.
struct DisplayLayout {
  Rect main;                  ///< The display that is mirrored and that absolute motion refers to. Empty when unknown.
  std::vector<Rect> screens;  ///< All displays, the main one among them. May be empty.
};

/// How the desktop is laid out.
class Displays {
 public:
  virtual ~Displays() = default;

  /// The layout of this moment, never null; a change of screens makes a new one. Cheap enough for every pointer
  /// event. Threads: any.
  virtual std::shared_ptr<const DisplayLayout> layout() const = 0;
};

}  // namespace orvel
