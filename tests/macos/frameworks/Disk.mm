#include "frameworks/Disk.hpp"

#include "runtime/Foundation.hpp"

#import <Foundation/Foundation.h>

@implementation NSFileManager
+ (NSFileManager*)defaultManager {
  static NSFileManager* manager = [[NSFileManager alloc] init];
  return manager;
}
- (NSArray<NSString*>*)contentsOfDirectoryAtPath:(NSString*)path error:(NSError**)error {
  const auto found = fake::disk().folders.find(path.UTF8String);
  if (found == fake::disk().folders.end()) return nil;
  NSMutableArray<NSString*>* names = [NSMutableArray arrayWithCapacity:0];
  for (const std::string& name : found->second) [names addObject:objectivec::text(name)];
  return names;
}
@end

NSString* NSHomeDirectory() {
  return objectivec::text(fake::disk().home);
}

// What a CFBundleRef is. It keeps what it has returned, as long as it lives.
@interface Bundle : NSObject {
 @public
  std::map<std::string, id> values_;
}
@end
@implementation Bundle
@end

namespace {

id valueOf(CFBundleRef bundle, const char* key) {
  const auto& values = ((__bridge Bundle*)bundle)->values_;
  const auto found = values.find(key);
  return found == values.end() ? nil : found->second;
}

}  // namespace

extern "C" {

CFBundleRef CFBundleCreate(CFAllocatorRef, CFURLRef location) {
  const auto found = fake::disk().bundles.find(((__bridge NSURL*)location).path.UTF8String);
  if (found == fake::disk().bundles.end()) return nullptr;
  Bundle* bundle = [[Bundle alloc] init];
  for (const auto& [key, value] : found->second) {
    const auto* text = std::get_if<std::string>(&value);
    id object =
        text != nullptr ? objectivec::text(*text) : static_cast<id>([NSNumber numberWithInt:std::get<int>(value)]);
    bundle->values_[key] = object;
  }
  return (CFBundleRef)(__bridge_retained CFTypeRef)bundle;
}

CFStringRef CFBundleGetIdentifier(CFBundleRef bundle) {
  return (__bridge CFStringRef) static_cast<NSString*>(valueOf(bundle, "CFBundleIdentifier"));
}

CFTypeRef CFBundleGetValueForInfoDictionaryKey(CFBundleRef bundle, CFStringRef key) {
  return (__bridge CFTypeRef)valueOf(bundle, ((__bridge NSString*)key).UTF8String);
}

}  // extern "C"

namespace fake {

Disk& disk() {
  static Disk disk;
  return disk;
}

}  // namespace fake
