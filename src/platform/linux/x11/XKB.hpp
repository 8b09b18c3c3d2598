#pragma once

#include <xcb/xcb.h>

// The header names fields by a keyword of C++.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit
