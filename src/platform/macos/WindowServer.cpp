#include "platform/macos/WindowServer.hpp"

#include "platform/macos/CFPointer.hpp"

#include <CoreGraphics/CoreGraphics.h>

namespace orvel {

bool WindowServer::isThere() {
  return CFPointer<CFDictionaryRef>(CGSessionCopyCurrentDictionary()) != nullptr;
}

}  // namespace orvel
