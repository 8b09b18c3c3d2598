#include "frameworks/Defaults.hpp"

#include "runtime/Foundation.hpp"

#import <Foundation/Foundation.h>

#include <cstdlib>
#include <mutex>

namespace {

id objectOf(const fake::DefaultsElement& element) {
  if (const auto* text = std::get_if<std::string>(&element)) return objectivec::text(*text);
  return [NSNumber numberWithInt:std::get<int>(element)];
}

id objectOf(const fake::DefaultsValue& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return objectivec::text(*text);
  if (const auto* number = std::get_if<int>(&value)) return [NSNumber numberWithInt:*number];
  NSMutableArray* array = [NSMutableArray arrayWithCapacity:0];
  for (const auto& element : std::get<std::vector<fake::DefaultsElement>>(value)) [array addObject:objectOf(element)];
  return array;
}

/// A Mac ends programs that store anything else, too.
std::string textOf(id object) {
  if (![object isKindOfClass:NSString.class]) std::abort();
  return static_cast<NSString*>(object).UTF8String;
}

fake::DefaultsValue valueOf(id object) {
  if (![object isKindOfClass:NSArray.class]) return textOf(object);
  std::vector<fake::DefaultsElement> elements;
  for (id element in static_cast<NSArray*>(object)) elements.emplace_back(textOf(element));
  return elements;
}

std::mutex& guard() {
  static std::mutex mutex;
  return mutex;
}

}  // namespace

@implementation NSUserDefaults
+ (NSUserDefaults*)standardUserDefaults {
  static NSUserDefaults* defaults = [[NSUserDefaults alloc] init];
  return defaults;
}
- (id)objectForKey:(NSString*)name {
  const std::lock_guard lock(guard());
  const auto found = fake::defaults().find(name.UTF8String);
  return found == fake::defaults().end() ? nil : objectOf(found->second);
}
- (void)setObject:(id)value forKey:(NSString*)name {
  const std::lock_guard lock(guard());
  if (value == nil) {
    fake::defaults().erase(name.UTF8String);
  } else {
    fake::defaults().insert_or_assign(name.UTF8String, valueOf(value));
  }
}
@end

namespace fake {

std::map<std::string, DefaultsValue>& defaults() {
  static std::map<std::string, DefaultsValue> values;
  return values;
}

}  // namespace fake
