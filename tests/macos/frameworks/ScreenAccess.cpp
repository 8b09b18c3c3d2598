#include "frameworks/ScreenAccess.hpp"

#include <CoreGraphics/CoreGraphics.h>

fake::ScreenAccess& fake::screenAccess() {
  static ScreenAccess access;
  return access;
}

extern "C" {

bool CGPreflightScreenCaptureAccess() {
  return fake::screenAccess().isGranted;
}

bool CGRequestScreenCaptureAccess() {
  ++fake::screenAccess().requests;
  return fake::screenAccess().isGranted;
}

}  // extern "C"
