#pragma once

#include <CoreFoundation/CoreFoundation.h>

MAC_EXTERN const CFStringRef _Nonnull kCGImageDestinationLossyCompressionQuality MAC_SINCE(10.4);
