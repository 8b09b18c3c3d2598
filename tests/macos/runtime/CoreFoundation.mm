// Core Foundation, whose objects are Objective-C objects here, all of them. So the runtime judges their ownership, too.

#include "runtime/Foundation.hpp"

#import <Foundation/Foundation.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>

namespace {

void appendUTF8(std::uint32_t character, std::string& text) {
  if (character < 0x80) {
    text += static_cast<char>(character);
    return;
  }
  const int rest = character < 0x800 ? 1 : character < 0x10000 ? 2 : 3;
  text += static_cast<char>((0xff00 >> (rest + 1) & 0xff) | (character >> (6 * rest)));
  for (int at = rest - 1; at >= 0; --at) text += static_cast<char>(0x80 | (character >> (6 * at) & 0x3f));
}

bool isSurrogate(std::uint32_t unit, std::uint32_t first) {
  return unit >= first && unit < first + 0x400;
}

/// Whether it has half a surrogate pair in it, which the system keeps but cannot say in UTF-8.
bool hasHalfPair(const std::string& text) {
  for (std::size_t at = 0; at + 1 < text.size(); ++at) {
    if (text[at] == '\xed' && static_cast<std::uint8_t>(text[at + 1]) >= 0xa0) return true;
  }
  return false;
}

/// Needs no pool of the caller's, as on a Mac.
CFStringRef ownedText(const std::string& text) {
  @autoreleasepool {
    return (__bridge_retained CFStringRef)objectivec::text(text);
  }
}

}  // namespace

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

CFDataRef CFDataCreate(CFAllocatorRef, const UInt8* bytes, CFIndex count) {
  return (__bridge_retained CFDataRef)[NSData dataWithBytes:bytes length:static_cast<NSUInteger>(count)];
}

CFStringRef CFStringCreateWithBytes(CFAllocatorRef, const UInt8* bytes, CFIndex count, CFStringEncoding encoding,
                                    Boolean) {
  if (encoding != kCFStringEncodingUTF8) std::abort();
  if (!objectivec::isUTF8({reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(count)})) return nullptr;
  const std::string text(reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(count));
  return ownedText(text);
}

CFStringRef CFStringCreateWithCharacters(CFAllocatorRef, const UniChar* units, CFIndex count) {
  std::string text;
  for (CFIndex at = 0; at < count; ++at) {
    std::uint32_t character = units[at];
    if (isSurrogate(character, 0xd800) && at + 1 < count && isSurrogate(units[at + 1], 0xdc00)) {
      character = 0x10000 + ((character - 0xd800) << 10) + (units[++at] - 0xdc00U);
    }
    appendUTF8(character, text);
  }
  return ownedText(text);
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
  if (hasHalfPair(bytes)) return 0;
  if (buffer != nullptr) {
    if (length > size) return 0;
    std::memcpy(buffer, bytes, static_cast<std::size_t>(length));
  }
  if (used != nullptr) *used = length;
  return range.length;
}

}  // extern "C"
