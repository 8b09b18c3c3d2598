#pragma once

#include "base/Geometry.hpp"
#include "ui/PanelPlacement.hpp"

#include <QRect>
#include <QScreen>

namespace orvel {

inline Rect rectOf(const QRect& rect) {
  return {{static_cast<double>(rect.x()), static_cast<double>(rect.y())},
          {static_cast<double>(rect.width()), static_cast<double>(rect.height())}};
}

inline PanelPlacement::Monitor monitorOf(const QScreen& screen) {
  return {.whole = rectOf(screen.geometry()), .free = rectOf(screen.availableGeometry())};
}

}  // namespace orvel
