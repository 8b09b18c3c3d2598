// Just as much of Foundation as the leaves use, on the small runtime.

#include "runtime/Foundation.hpp"

#import <Foundation/Foundation.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

extern "C" {
void* makeObject(void* type);
void endObject(void* object);
bool objectResponds(void* object, const char* selector);
bool objectIsKindOf(void* object, void* type);
}

@implementation NSObject
+ (Class)class {
  return self;
}
+ (instancetype)alloc {
  return (__bridge_transfer id)makeObject((__bridge void*)self);
}
+ (instancetype)new {
  return [[self alloc] init];
}
- (instancetype)init {
  return self;
}
- (BOOL)isEqual:(id)object {
  return self == object;
}
- (NSUInteger)hash {
  return reinterpret_cast<NSUInteger>((__bridge void*)self);
}
- (BOOL)respondsToSelector:(SEL)selector {
  return objectResponds((__bridge void*)self, reinterpret_cast<const char*>(selector));
}
- (BOOL)isKindOfClass:(Class)type {
  return objectIsKindOf((__bridge void*)self, (__bridge void*)type);
}
- (void)dealloc {
  endObject((__bridge void*)self);
}
@end

// Texts are UTF-8 inside, as they are only made from that and read as that.
@interface PlainString : NSString {
 @public
  std::string bytes_;
}
@end

@implementation NSString
+ (instancetype)stringWithUTF8String:(const char*)bytes {
  return objectivec::text(bytes);
}
- (const char*)UTF8String {
  return "";
}
- (NSUInteger)length {
  return objectivec::utf16Length(self.UTF8String);
}
- (BOOL)isEqualToString:(NSString*)other {
  return other != nil && std::strcmp(self.UTF8String, other.UTF8String) == 0;
}
- (BOOL)isEqual:(id)object {
  return [object isKindOfClass:NSString.class] && [self isEqualToString:object];
}
- (NSUInteger)hash {
  return std::hash<std::string>{}(self.UTF8String);
}
@end

@implementation PlainString
- (const char*)UTF8String {
  return bytes_.c_str();
}
@end

// As the compiler lays a literal out.
@interface LiteralString : NSString {
 @public
  int flags_;
  const char* bytes_;
  long length_;
}
@end

@implementation LiteralString
- (const char*)UTF8String {
  return bytes_;
}
@end
__asm__(".globl __CFConstantStringClassReference\n"
        ".set __CFConstantStringClassReference, OBJC_CLASS_$_LiteralString\n");

@implementation NSNumber {
  double value_;
  const void* type_;
}
+ (NSNumber*)numberWithDouble:(double)value {
  NSNumber* number = [[NSNumber alloc] init];
  number->value_ = value;
  return number;
}
+ (NSNumber*)numberWithBool:(BOOL)value {
  return [self numberWithDouble:value];
}
+ (NSNumber*)numberWithInt:(int)value {
  return [self numberWithDouble:value];
}
+ (NSNumber*)numberWithUnsignedInt:(unsigned int)value {
  return [self numberWithDouble:value];
}
+ (NSNumber*)numberWithInteger:(NSInteger)value {
  return [self numberWithDouble:static_cast<double>(value)];
}
- (BOOL)boolValue {
  return value_ != 0;
}
- (double)doubleValue {
  return value_;
}
- (int)intValue {
  return static_cast<int>(value_);
}
- (NSInteger)integerValue {
  return static_cast<NSInteger>(value_);
}
- (unsigned int)unsignedIntValue {
  return static_cast<unsigned int>(value_);
}
- (BOOL)isEqual:(id)object {
  return [object isKindOfClass:NSNumber.class] && static_cast<NSNumber*>(object)->value_ == value_;
}
@end

// Nothing cannot be in a collection: a Mac throws what ends the program.
static void expectObjects(const id* objects, NSUInteger count) {
  for (NSUInteger at = 0; at < count; ++at) {
    if (objects[at] != nil) continue;
    std::fputs("objective-c: nil put into a collection\n", stderr);
    std::abort();
  }
}

@implementation NSNull
+ (NSNull*)null {
  static NSNull* null = [[NSNull alloc] init];
  return null;
}
@end

@implementation NSArray {
 @public
  std::vector<id> objects_;
  unsigned long changes_;
}
+ (instancetype)array {
  return [[self alloc] init];
}
+ (instancetype)arrayWithObjects:(const id[])objects count:(NSUInteger)count {
  expectObjects(objects, count);
  NSArray* array = [[self alloc] init];
  array->objects_.assign(objects, objects + count);
  return array;
}
- (NSUInteger)count {
  return objects_.size();
}
- (id)firstObject {
  return objects_.empty() ? nil : objects_.front();
}
- (id)objectAtIndexedSubscript:(NSUInteger)index {
  return objects_.at(index);
}
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id __unsafe_unretained[])buffer
                                    count:(NSUInteger)count {
  if (state->state != 0) return 0;
  state->state = 1;
  state->itemsPtr = reinterpret_cast<id __unsafe_unretained*>(reinterpret_cast<void*>(objects_.data()));
  state->mutationsPtr = &changes_;
  return objects_.size();
}
@end

@implementation NSMutableArray
+ (instancetype)arrayWithCapacity:(NSUInteger)capacity {
  return [[self alloc] init];
}
- (void)addObject:(id)object {
  expectObjects(&object, 1);
  objects_.push_back(object);
  ++changes_;
}
@end

@implementation NSDictionary {
  std::vector<id> keys_;
  std::vector<id> values_;
  unsigned long changes_;
}
+ (instancetype)dictionaryWithObjects:(const id[])objects forKeys:(const id<NSCopying>[])keys count:(NSUInteger)count {
  expectObjects(objects, count);
  expectObjects(keys, count);
  NSDictionary* dictionary = [[self alloc] init];
  dictionary->keys_.assign(keys, keys + count);
  dictionary->values_.assign(objects, objects + count);
  return dictionary;
}
- (NSUInteger)count {
  return keys_.size();
}
- (id)objectForKeyedSubscript:(id)key {
  for (std::size_t at = 0; at < keys_.size(); ++at) {
    if ([keys_[at] isEqual:key]) return values_[at];
  }
  return nil;
}
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id __unsafe_unretained[])buffer
                                    count:(NSUInteger)count {
  if (state->state != 0) return 0;
  state->state = 1;
  state->itemsPtr = reinterpret_cast<id __unsafe_unretained*>(reinterpret_cast<void*>(keys_.data()));
  state->mutationsPtr = &changes_;
  return keys_.size();
}
@end

@implementation NSData {
  std::vector<std::uint8_t> bytes_;
}
+ (instancetype)dataWithBytes:(const void*)bytes length:(NSUInteger)length {
  NSData* data = [[self alloc] init];
  const auto* first = static_cast<const std::uint8_t*>(bytes);
  data->bytes_.assign(first, first + length);
  return data;
}
- (NSUInteger)length {
  return bytes_.size();
}
- (const void*)bytes {
  return bytes_.data();
}
@end

@implementation NSError {
 @public
  NSString* text_;
  NSString* domain_;
  NSInteger code_;
}
- (NSInteger)code {
  return code_;
}
- (NSString*)domain {
  return domain_;
}
- (NSString*)localizedDescription {
  return text_;
}
@end

@implementation NSURL {
  NSString* path_;
  NSString* text_;
}
+ (NSURL*)fileURLWithPath:(NSString*)path {
  NSURL* url = [[NSURL alloc] init];
  url->path_ = path;
  url->text_ = objectivec::text(std::string("file://") + path.UTF8String);
  return url;
}
+ (instancetype)URLWithString:(NSString*)text {
  NSURL* url = [[NSURL alloc] init];
  url->text_ = text;
  return url;
}
- (NSString*)path {
  return path_;
}
- (NSString*)absoluteString {
  return text_;
}
@end

@implementation NSNotification {
 @public
  NSString* name_;
  NSDictionary* userInfo_;
}
- (NSNotificationName)name {
  return name_;
}
- (NSDictionary*)userInfo {
  return userInfo_;
}
@end

// What a centre gives back, and takes back.
@interface NotificationObserver : NSObject {
 @public
  NSString* name_;
  void (^block_)(NSNotification*);
}
@end
@implementation NotificationObserver
@end

@implementation NSNotificationCenter {
  std::vector<NotificationObserver*> observers_;
}
+ (NSNotificationCenter*)defaultCenter {
  static NSNotificationCenter* center = [[NSNotificationCenter alloc] init];
  return center;
}
- (id<NSObject>)addObserverForName:(NSNotificationName)name
                            object:(id)object
                             queue:(NSOperationQueue*)queue
                        usingBlock:(void (^)(NSNotification*))block {
  NotificationObserver* observer = [[NotificationObserver alloc] init];
  observer->name_ = name;
  observer->block_ = block;
  observers_.push_back(observer);
  return observer;
}
- (void)removeObserver:(id)observer {
  std::erase(observers_, static_cast<NotificationObserver*>(observer));
}
- (void)post:(NSString*)name userInfo:(NSDictionary*)userInfo {
  NSNotification* notification = [[NSNotification alloc] init];
  notification->name_ = name;
  notification->userInfo_ = userInfo;
  const auto observers = observers_;
  for (NotificationObserver* each : observers) {
    if (each->name_ == nil || [each->name_ isEqualToString:name]) each->block_(notification);
  }
}
- (NSUInteger)observerCount {
  return observers_.size();
}
@end

namespace objectivec {

std::size_t utf16Length(const std::string& text) {
  std::size_t length = 0;
  for (const char each : text) {
    const auto byte = static_cast<std::uint8_t>(each);
    // One for each character, and one more where it takes four bytes.
    if ((byte & 0xc0) != 0x80) length += byte >= 0xf0 ? 2 : 1;
  }
  return length;
}

bool isUTF8(const std::string& bytes) {
  int following = 0;
  for (const char each : bytes) {
    const auto byte = static_cast<std::uint8_t>(each);
    const bool follows = (byte & 0xc0) == 0x80;
    if (follows != (following > 0) || byte >= 0xf8) return false;
    if (follows) {
      --following;
    } else {
      following = byte >= 0xf0 ? 3 : byte >= 0xe0 ? 2 : byte >= 0xc0 ? 1 : 0;
    }
  }
  return following == 0;
}

NSString* text(const std::string& bytes) {
  PlainString* string = [[PlainString alloc] init];
  string->bytes_ = bytes;
  return string;
}

NSError* error(const std::string& domain, NSInteger code, const std::string& description) {
  NSError* error = [[NSError alloc] init];
  error->domain_ = text(domain);
  error->code_ = code;
  error->text_ = text(description);
  return error;
}

void notify(NSNotificationCenter* center, NSString* name, NSDictionary* userInfo) {
  [center post:name userInfo:userInfo];
}

std::size_t observerCount(NSNotificationCenter* center) {
  return center.observerCount;
}

}  // namespace objectivec
