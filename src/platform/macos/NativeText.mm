#include "platform/macos/NativeText.hpp"

#import <Foundation/Foundation.h>

#include <cstddef>

namespace orvel {

std::string NativeText::fromCF(CFStringRef text) {
  if (text == nullptr) return {};
  const CFRange whole{.location = 0, .length = CFStringGetLength(text)};
  const auto get = [&](UInt8* buffer, CFIndex size, CFIndex* used) {
    return CFStringGetBytes(text, whole, kCFStringEncodingUTF8, 0, 0, buffer, size, used);
  };
  CFIndex size = 0;
  if (get(nullptr, 0, &size) != whole.length) return {};
  std::string bytes(static_cast<std::size_t>(size), '\0');
  if (get(reinterpret_cast<UInt8*>(bytes.data()), size, &size) != whole.length) return {};
  return bytes;
}

CFPointer<CFStringRef> NativeText::toCF(std::string_view text) {
  const auto* bytes = reinterpret_cast<const UInt8*>(text.data());
  return CFPointer<CFStringRef>(
      CFStringCreateWithBytes(nullptr, bytes, static_cast<CFIndex>(text.size()), kCFStringEncodingUTF8, 0));
}

std::optional<std::string> NativeText::fromNS(NSString* text) {
  if (text == nil) return std::nullopt;
  return fromCF((__bridge CFStringRef)text);
}

NSString* NativeText::toNS(std::string_view text) {
  return (__bridge_transfer NSString*)toCF(text).release();
}

}  // namespace orvel
