#include "platform/macos/CFText.hpp"

#include <cstddef>

namespace orvel {

std::string CFText::fromSystem(CFStringRef text) {
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

CFPointer<CFStringRef> CFText::toSystem(std::string_view text) {
  const auto* bytes = reinterpret_cast<const UInt8*>(text.data());
  return CFPointer<CFStringRef>(
      CFStringCreateWithBytes(nullptr, bytes, static_cast<CFIndex>(text.size()), kCFStringEncodingUTF8, 0));
}

}  // namespace orvel
