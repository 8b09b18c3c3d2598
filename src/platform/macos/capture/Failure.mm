#include "platform/macos/capture/Failure.hpp"

#include "platform/macos/CFText.hpp"

namespace orvel {

CaptureFailure Failure::because(NSError* error) {
  if (error == nil) return {"The system cannot capture the screen."};
  return {CFText::fromSystem((__bridge CFStringRef)error.localizedDescription)};
}

CaptureFailure Failure::silence() {
  return {"The system does not answer."};
}

}  // namespace orvel
