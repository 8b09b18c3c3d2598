#pragma once

#include "base/Geometry.hpp"

namespace orvel::PanelPlacement {

/// Between the panel and what it must not touch.
constexpr double gap = 4;

/// The monitor on which the panel opens, in the toolkit's units.
struct Monitor {
  Rect whole;
  Rect free;  ///< Without the desktop's own bars.
};

/// Where a panel of that size goes that opens from `icon`, which may be a mere point: beside it, towards the middle of
/// the monitor, and never beyond the free part of it. A panel that is larger than that starts at its left top.
Point at(const Rect& icon, const Size& panel, const Monitor& monitor);

/// The corner where icons usually are, for when nobody says where ours is: the right end of the bar, at the top when
/// there is none.
Rect usualCorner(const Monitor& monitor);

}  // namespace orvel::PanelPlacement
