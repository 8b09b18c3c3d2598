#pragma once

#include <CoreFoundation/CoreFoundation.h>

typedef const struct __SCDynamicStore* SCDynamicStoreRef;

MAC_EXTERN CFStringRef _Nullable SCDynamicStoreCopyComputerName(
    SCDynamicStoreRef _Nullable store, CFStringEncoding* _Nullable encoding) MAC_RETURNS_RETAINED MAC_SINCE(10.1);
