#pragma once

typedef struct CGColorSpace* CGColorSpaceRef;

MAC_EXTERN CGColorSpaceRef _Nullable CGColorSpaceCreateDeviceRGB(void) MAC_RETURNS_RETAINED MAC_SINCE(10.0);
