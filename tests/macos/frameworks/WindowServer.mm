#include "frameworks/WindowServer.hpp"

#include <CoreGraphics/CoreGraphics.h>
#import <Foundation/Foundation.h>

bool& fake::hasWindowServer() {
  static bool has = true;
  return has;
}

CFDictionaryRef CGSessionCopyCurrentDictionary() {
  if (!fake::hasWindowServer()) return nullptr;
  return (__bridge_retained CFDictionaryRef) @{@"kCGSSessionUserIDKey" : @501};
}
