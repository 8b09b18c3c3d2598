#pragma once

#include "AXUIElement.h"

#include <CoreGraphics/CoreGraphics.h>
