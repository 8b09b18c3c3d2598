#pragma once

#include "Annotations.h"

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

typedef unsigned char Boolean;
typedef uint8_t UInt8;
typedef int32_t SInt32;
typedef uint32_t UInt32;
typedef uint32_t OSType;
typedef int32_t OSStatus;
typedef uint16_t UniChar;
typedef unsigned long UniCharCount;
typedef long CFIndex;
typedef unsigned long CFTypeID;
typedef unsigned long CFOptionFlags;
typedef double CFTimeInterval;
typedef uint32_t CFStringEncoding;
typedef struct {
  CFIndex location;
  CFIndex length;
} CFRange;

#ifdef __OBJC__
@class NSArray, NSData, NSDictionary, NSNumber, NSString, NSURL;
#endif

typedef const void* CFTypeRef;
typedef const struct __CFAllocator* CFAllocatorRef;
typedef const struct MAC_BRIDGED(NSArray) __CFArray* CFArrayRef;
typedef const struct MAC_BRIDGED(NSNumber) __CFBoolean* CFBooleanRef;
typedef const struct MAC_BRIDGED(NSData) __CFData* CFDataRef;
typedef const struct MAC_BRIDGED(NSDictionary) __CFDictionary* CFDictionaryRef;
typedef const struct MAC_BRIDGED(NSString) __CFString* CFStringRef;
typedef const struct MAC_BRIDGED(NSURL) __CFURL* CFURLRef;

enum : CFStringEncoding { kCFStringEncodingUTF8 = 0x08000100 };

MAC_EXTERN const CFBooleanRef kCFBooleanTrue;
MAC_EXTERN const CFBooleanRef kCFBooleanFalse;

MAC_EXTERN CFTypeRef CFRetain(CFTypeRef object);
MAC_EXTERN void CFRelease(CFTypeRef object);
MAC_EXTERN CFTypeID CFGetTypeID(CFTypeRef object);

MAC_EXTERN CFTypeID CFStringGetTypeID(void);
MAC_EXTERN CFStringRef CFStringCreateWithBytes(CFAllocatorRef allocator, const UInt8* bytes, CFIndex count,
                                               CFStringEncoding encoding,
                                               Boolean isExternalRepresentation) MAC_RETURNS_RETAINED;
MAC_EXTERN CFStringRef CFStringCreateWithCharacters(CFAllocatorRef allocator, const UniChar* units,
                                                    CFIndex count) MAC_RETURNS_RETAINED;
MAC_EXTERN CFIndex CFStringGetLength(CFStringRef text);
MAC_EXTERN CFIndex CFStringGetBytes(CFStringRef text, CFRange range, CFStringEncoding encoding, UInt8 lossByte,
                                    Boolean isExternalRepresentation, UInt8* buffer, CFIndex size, CFIndex* used);

/// The text of a literal, as an object that is never released.
#define CFSTR(literal) (reinterpret_cast<CFStringRef>(__builtin___CFStringMakeConstantString("" literal "")))

#include "CFBundle.h"
#include "CFData.h"
#include "CFMessagePort.h"
