#include "platform/macos/SystemScreenRecordingAccess.hpp"

#include <CoreGraphics/CoreGraphics.h>

namespace orvel {

bool SystemScreenRecordingAccess::isGranted() {
  return CGPreflightScreenCaptureAccess();
}

bool SystemScreenRecordingAccess::request() {
  CGRequestScreenCaptureAccess();
  return true;
}

}  // namespace orvel
