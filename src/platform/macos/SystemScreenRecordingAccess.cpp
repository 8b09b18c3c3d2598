#include "platform/macos/SystemScreenRecordingAccess.hpp"

#include <CoreGraphics/CoreGraphics.h>

namespace orvel {

bool SystemScreenRecordingAccess::isGranted() {
  return CGPreflightScreenCaptureAccess();
}

ScreenRecordingAccess::Denial SystemScreenRecordingAccess::denial() const {
  return {
      .onRequest = "Screen Recording is off for Orvel. Turn it on in Privacy & Security on the Mac, then try again.",
      .onStart = "Screen Recording is off for Orvel. Turn it on in Privacy & Security."};
}

void SystemScreenRecordingAccess::request() {
  CGRequestScreenCaptureAccess();
}

}  // namespace orvel
