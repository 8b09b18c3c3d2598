#include "platform/macos/SystemPreferences.hpp"

#include "platform/macos/NativeText.hpp"

#import <Foundation/Foundation.h>

#include <algorithm>
#include <utility>

namespace orvel {
namespace {

/// Nothing for anything but a text, where NSUserDefaults itself would make one of a number.
std::optional<std::string> textIn(id value) {
  if (![value isKindOfClass:NSString.class]) return std::nullopt;
  return NativeText::fromNS(static_cast<NSString*>(value));
}

id valueOf(const std::string& key) {
  NSString* name = NativeText::toNS(key);
  return name == nil ? nil : [NSUserDefaults.standardUserDefaults objectForKey:name];
}

/// Nil removes.
void store(id value, const std::string& key) {
  NSString* name = NativeText::toNS(key);
  if (name != nil) [NSUserDefaults.standardUserDefaults setObject:value forKey:name];
}

}  // namespace

std::optional<std::string> SystemPreferences::string(const std::string& key) const {
  @autoreleasepool {
    return textIn(valueOf(key));
  }
}

void SystemPreferences::setString(const std::string& key, const std::string& value) {
  @autoreleasepool {
    store(NativeText::toNS(value), key);
  }
}

std::vector<std::string> SystemPreferences::strings(const std::string& key) const {
  @autoreleasepool {
    id value = valueOf(key);
    if (![value isKindOfClass:NSArray.class]) return {};
    std::vector<std::string> texts;
    for (id element in static_cast<NSArray*>(value)) {
      auto text = textIn(element);
      if (!text) return {};
      texts.push_back(std::move(*text));
    }
    return texts;
  }
}

void SystemPreferences::setStrings(const std::string& key, const std::vector<std::string>& values) {
  @autoreleasepool {
    NSMutableArray<NSString*>* texts = [NSMutableArray arrayWithCapacity:values.size()];
    for (const std::string& value : values) {
      NSString* text = NativeText::toNS(value);
      if (text != nil) [texts addObject:text];
    }
    store(texts, key);
  }
}

void SystemPreferences::setMissing(const std::string& key, const std::string& value) {
  setString(key, value);
}

void SystemPreferences::add(const std::string& key, const std::string& value) {
  auto texts = strings(key);
  if (std::ranges::find(texts, value) != texts.end()) return;
  texts.push_back(value);
  setStrings(key, texts);
}

void SystemPreferences::remove(const std::string& key) {
  @autoreleasepool {
    store(nil, key);
  }
}

}  // namespace orvel
