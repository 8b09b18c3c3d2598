#pragma once

#include <CoreFoundation/CoreFoundation.h>

#pragma clang assume_nonnull begin

typedef const struct MAC_BRIDGED(id) __AXUIElement* AXUIElementRef;

typedef enum AXError : SInt32 {
  kAXErrorSuccess = 0,
  kAXErrorFailure = -25200,
  kAXErrorIllegalArgument = -25201,
  kAXErrorInvalidUIElement = -25202,
  kAXErrorCannotComplete = -25204,
  kAXErrorAttributeUnsupported = -25205,
  kAXErrorAPIDisabled = -25211,
  kAXErrorNoValue = -25212,
} AXError;

#define kAXRoleAttribute CFSTR("AXRole")
#define kAXPositionAttribute CFSTR("AXPosition")
#define kAXSizeAttribute CFSTR("AXSize")

MAC_EXTERN Boolean AXIsProcessTrusted(void) MAC_SINCE(10.4);
MAC_EXTERN Boolean AXIsProcessTrustedWithOptions(CFDictionaryRef _Nullable options) MAC_SINCE(10.9);
MAC_EXTERN const CFStringRef kAXTrustedCheckOptionPrompt MAC_SINCE(10.9);

MAC_EXTERN AXUIElementRef AXUIElementCreateSystemWide(void) MAC_RETURNS_RETAINED MAC_SINCE(10.2);
MAC_EXTERN AXError AXUIElementSetMessagingTimeout(AXUIElementRef element, float seconds) MAC_SINCE(10.4);
/// Who asks owns the element, and the value.
MAC_EXTERN AXError AXUIElementCopyElementAtPosition(AXUIElementRef application, float x, float y,
                                                    AXUIElementRef _Nullable* _Nonnull element) MAC_SINCE(10.2);
MAC_EXTERN AXError AXUIElementCopyAttributeValue(AXUIElementRef element, CFStringRef attribute,
                                                 CFTypeRef _Nullable* _Nonnull value) MAC_SINCE(10.2);

#pragma clang assume_nonnull end
