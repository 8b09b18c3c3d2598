#pragma once

#include "AXUIElement.h"
#include "AXValue.h"

#include <CoreGraphics/CoreGraphics.h>

// Types of an older system that are still everywhere on a Mac, under names of ours.
struct Point {
  short v;
  short h;
};
struct Rect {
  short top;
  short left;
  short bottom;
  short right;
};
typedef long Size;
