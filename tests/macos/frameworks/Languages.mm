#include "frameworks/Languages.hpp"

#include "runtime/Foundation.hpp"

std::vector<std::string>& fake::preferredLanguages() {
  static std::vector<std::string> languages;
  return languages;
}

@implementation NSLocale

+ (NSArray<NSString*>*)preferredLanguages {
  NSMutableArray<NSString*>* languages = [NSMutableArray arrayWithCapacity:1];
  for (const std::string& language : fake::preferredLanguages()) [languages addObject:objectivec::text(language)];
  return languages;
}

@end
