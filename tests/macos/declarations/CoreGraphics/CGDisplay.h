#pragma once

typedef uint32_t CGDirectDisplayID;
typedef int32_t CGError;
enum : CGError { kCGErrorSuccess = 0 };

MAC_EXTERN CGDirectDisplayID CGMainDisplayID(void) MAC_SINCE(10.2);
MAC_EXTERN CGRect CGDisplayBounds(CGDirectDisplayID display) MAC_SINCE(10.0);
