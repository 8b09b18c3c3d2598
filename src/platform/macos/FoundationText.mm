#include "platform/macos/FoundationText.hpp"

#include "platform/macos/CFText.hpp"

#import <Foundation/Foundation.h>

namespace orvel {

std::optional<std::string> FoundationText::fromSystem(NSString* text) {
  if (text == nil) return std::nullopt;
  return CFText::fromSystem((__bridge CFStringRef)text);
}

NSString* FoundationText::toSystem(std::string_view text) {
  return (__bridge_transfer NSString*)CFText::toSystem(text).release();
}

}  // namespace orvel
