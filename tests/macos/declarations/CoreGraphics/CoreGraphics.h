#pragma once

#include "Annotations.h"

#include <CoreFoundation/CoreFoundation.h>

typedef double CGFloat;
typedef struct CGPoint {
  CGFloat x;
  CGFloat y;
} CGPoint;
typedef struct CGSize {
  CGFloat width;
  CGFloat height;
} CGSize;
typedef struct CGRect {
  CGPoint origin;
  CGSize size;
} CGRect;

#include "CGColorSpace.h"
#include "CGDisplay.h"
#include "CGEvent.h"
#include "CGSession.h"
#include "CGWindow.h"
