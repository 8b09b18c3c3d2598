#pragma once

typedef struct __CFBundle* CFBundleRef;

MAC_EXTERN CFBundleRef CFBundleCreate(CFAllocatorRef allocator, CFURLRef location) MAC_RETURNS_RETAINED;
MAC_EXTERN CFStringRef CFBundleGetIdentifier(CFBundleRef bundle);
MAC_EXTERN CFTypeRef CFBundleGetValueForInfoDictionaryKey(CFBundleRef bundle, CFStringRef key);
