#pragma once

#include "Annotations.h"

#include <CoreFoundation/CoreFoundation.h>
#include <CoreGraphics/CoreGraphics.h>
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#pragma clang assume_nonnull begin

#ifdef __arm64__
typedef bool BOOL;
#else
typedef signed char BOOL;
#endif
#define YES __objc_yes
#define NO __objc_no
#define nil nullptr

typedef long NSInteger;
typedef unsigned long NSUInteger;
typedef double NSTimeInterval;
typedef CGPoint NSPoint;
typedef CGSize NSSize;
typedef CGRect NSRect;
#define NS_ENUM(type, name) \
  enum name : type name;    \
  enum name : type
#define NS_OPTIONS(type, name)                 \
  enum __attribute__((flag_enum)) name : type; \
  typedef enum name name;                      \
  enum __attribute__((flag_enum)) name : type

typedef struct {
  unsigned long state;
  id __unsafe_unretained _Nullable* _Nullable itemsPtr;
  unsigned long* _Nullable mutationsPtr;
  unsigned long extra[5];
} NSFastEnumerationState;

MAC_EXTERN SEL NSSelectorFromString(NSString* name);

@class NSString;

@protocol NSObject
- (BOOL)isEqual:(nullable id)object;
- (NSUInteger)hash;
- (BOOL)respondsToSelector:(SEL)selector;
- (BOOL)isKindOfClass:(Class)type;
@end

@protocol NSCopying
@end

@protocol NSFastEnumeration
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id __unsafe_unretained _Nullable[_Nonnull])buffer
                                    count:(NSUInteger)count;
@end

__attribute__((objc_root_class))
@interface NSObject<NSObject> {
  Class isa;
}
+ (Class)class;
+ (instancetype)alloc;
+ (instancetype)new;
- (instancetype)init;
@end

@interface NSString : NSObject <NSCopying>
@property(readonly, nullable) const char* UTF8String;
@property(readonly) NSUInteger length;
+ (nullable instancetype)stringWithUTF8String:(const char*)bytes;
- (BOOL)isEqualToString:(NSString*)other;
@end

@interface NSNumber : NSObject <NSCopying>
+ (NSNumber*)numberWithBool:(BOOL)value;
+ (NSNumber*)numberWithInt:(int)value;
+ (NSNumber*)numberWithUnsignedInt:(unsigned int)value;
+ (NSNumber*)numberWithDouble:(double)value;
+ (NSNumber*)numberWithInteger:(NSInteger)value;
@property(readonly) BOOL boolValue;
@property(readonly) double doubleValue;
@property(readonly) int intValue;
@property(readonly) NSInteger integerValue;
@property(readonly) unsigned int unsignedIntValue;
@end

@interface NSNull : NSObject <NSCopying>
+ (NSNull*)null;
@end

@interface NSArray<__covariant Element> : NSObject <NSCopying, NSFastEnumeration>
@property(readonly) NSUInteger count;
@property(nullable, nonatomic, readonly) Element firstObject;
+ (instancetype)array;
+ (instancetype)arrayWithObjects:(const Element _Nonnull[_Nullable])objects count:(NSUInteger)count;
- (Element)objectAtIndexedSubscript:(NSUInteger)index;
@end

@interface NSMutableArray<Element> : NSArray <Element>
+ (instancetype)arrayWithCapacity:(NSUInteger)capacity;
- (void)addObject:(Element)object;
@end

@interface NSDictionary<__covariant Key, __covariant Value> : NSObject <NSCopying, NSFastEnumeration>
@property(readonly) NSUInteger count;
+ (instancetype)dictionaryWithObjects:(const Value _Nonnull[_Nullable])objects
                              forKeys:(const id<NSCopying> _Nonnull[_Nullable])keys
                                count:(NSUInteger)count;
- (nullable Value)objectForKeyedSubscript:(Key)key;
@end

@interface NSData : NSObject <NSCopying>
@property(readonly) NSUInteger length;
@property(readonly) const void* bytes;
+ (instancetype)dataWithBytes:(nullable const void*)bytes length:(NSUInteger)length;
@end

@interface NSError : NSObject
@property(readonly) NSInteger code;
@property(readonly, copy) NSString* domain;
@property(readonly, copy) NSString* localizedDescription;
@end

@interface NSURL : NSObject <NSCopying>
@property(nullable, readonly, copy) NSString* path;
@property(nullable, readonly, copy) NSString* absoluteString;
+ (NSURL*)fileURLWithPath:(NSString*)path;
+ (nullable instancetype)URLWithString:(NSString*)text;
@end

typedef NSString* NSNotificationName;
@class NSOperationQueue;
@interface NSNotification : NSObject
@property(readonly, copy) NSNotificationName name;
@property(nullable, readonly, copy) NSDictionary* userInfo;
@end

@interface NSNotificationCenter : NSObject
@property(class, readonly, strong) NSNotificationCenter* defaultCenter;
- (id<NSObject>)addObserverForName:(nullable NSNotificationName)name
                            object:(nullable id)object
                             queue:(nullable NSOperationQueue*)queue
                        usingBlock:(void (^)(NSNotification* notification))block;
- (void)removeObserver:(id)observer;
@end

#pragma clang assume_nonnull end

#import "NSAppleEventManager.h"
#import "NSFileManager.h"
#import "NSKeyValueObserving.h"
#import "NSLocale.h"
#import "NSPathUtilities.h"
#import "NSProcessInfo.h"
#import "NSThread.h"
#import "NSUserDefaults.h"
