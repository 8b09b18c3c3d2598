// Core Foundation, whose objects are Objective-C objects here, all of them. So the runtime judges their ownership, too.

#include "runtime/Foundation.hpp"

#import <Foundation/Foundation.h>

#include <algorithm>
#include <cstring>
#include <string>

extern "C" {
void* objc_retain(void* object);
void objc_release(void* object);

const CFBooleanRef kCFBooleanTrue = (__bridge_retained CFBooleanRef)[NSNumber numberWithBool:YES];
const CFBooleanRef kCFBooleanFalse = (__bridge_retained CFBooleanRef)[NSNumber numberWithBool:NO];

CFTypeRef CFRetain(CFTypeRef object) {
  if (object == nullptr) std::abort();
  return objc_retain(const_cast<void*>(object));
}

// As on a Mac, where to release nothing ends the program.
void CFRelease(CFTypeRef object) {
  if (object == nullptr) std::abort();
  objc_release(const_cast<void*>(object));
}

/// The class stands for the type; those of texts are one.
CFTypeID CFGetTypeID(CFTypeRef object) {
  id value = (__bridge id)object;
  if ([value isKindOfClass:NSString.class]) return CFStringGetTypeID();
  return *static_cast<const CFTypeID*>(object);
}

CFTypeID CFStringGetTypeID() {
  return reinterpret_cast<CFTypeID>((__bridge void*)NSString.class);
}

CFStringRef CFStringCreateWithBytes(CFAllocatorRef, const UInt8* bytes, CFIndex count, CFStringEncoding encoding,
                                    Boolean) {
  if (encoding != kCFStringEncodingUTF8) std::abort();
  const std::string text(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(count));
  return (__bridge_retained CFStringRef)objectivec::text(text);
}

CFIndex CFStringGetLength(CFStringRef text) {
  return static_cast<CFIndex>(((__bridge NSString*)text).length);
}

CFIndex CFStringGetBytes(CFStringRef text, CFRange range, CFStringEncoding encoding, UInt8, Boolean, UInt8* buffer,
                         CFIndex size, CFIndex* used) {
  const char* bytes = ((__bridge NSString*)text).UTF8String;
  const auto length = static_cast<CFIndex>(std::strlen(bytes));
  // Only whole texts are asked for.
  if (encoding != kCFStringEncodingUTF8 || range.location != 0 || range.length != CFStringGetLength(text)) std::abort();
  if (buffer != nullptr) {
    if (length > size) return 0;
    std::memcpy(buffer, bytes, static_cast<std::size_t>(length));
  }
  if (used != nullptr) *used = length;
  return range.length;
}

}  // extern "C"
