#pragma once

#include <CoreFoundation/CoreFoundation.h>

#pragma clang assume_nonnull begin

typedef const struct MAC_BRIDGED(id) __AXValue* AXValueRef;

typedef enum AXValueType : UInt32 {
  kAXValueTypeCGPoint = 1,
  kAXValueTypeCGSize = 2,
  kAXValueTypeCGRect = 3,
} AXValueType;

MAC_EXTERN CFTypeID AXValueGetTypeID(void) MAC_SINCE(10.3);
MAC_EXTERN Boolean AXValueGetValue(AXValueRef value, AXValueType type, void* into) MAC_SINCE(10.3);

#pragma clang assume_nonnull end
