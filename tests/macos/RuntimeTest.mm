#include "MacTest.hpp"
#include "runtime/Foundation.hpp"
#include "runtime/ObjectiveC.hpp"

#import <CoreFoundation/CoreFoundation.h>
#import <Foundation/Foundation.h>
#include <gmock/gmock.h>

#include <string>
#include <thread>

/// What a test looks into.
@interface Probe : NSObject {
 @public
  int number_;
}
@property(copy) int (^block)(void);
@end
@implementation Probe
@end

namespace orvel {
namespace {

/// What the runtime must notice, since nothing else does.
using RuntimeTest = MacTest;

/// Leads to what has gone by the time it is used.
void* goneProbe() {
  Probe* const probe = [[Probe alloc] init];
  return (__bridge void*)probe;
}

TEST_F(RuntimeTest, NothingIsSentToWhatHasGone) {
  EXPECT_DEATH(
      {
        Probe* const __unsafe_unretained probe = (__bridge Probe*)goneProbe();
        (void)[probe hash];
      },
      "has gone: Probe");
}

TEST_F(RuntimeTest, NothingIsReadFromWhatHasGone) {
#if __has_feature(address_sanitizer)
  EXPECT_DEATH(
      {
        Probe* const __unsafe_unretained probe = (__bridge Probe*)goneProbe();
        probe->number_ = 1;
      },
      "AddressSanitizer: use-after-poison");
#else
  GTEST_SKIP() << "Only the address sanitizer sees it.";
#endif
}

TEST_F(RuntimeTest, NoReferenceTooManyIsGivenBack) {
  EXPECT_DEATH(
      {
        const CFTypeRef text = CFStringCreateWithBytes(nullptr, nullptr, 0, kCFStringEncodingUTF8, false);
        CFRelease(text);
        CFRelease(text);
      },
      "a reference too many given back");
}

TEST_F(RuntimeTest, NothingIsAutoreleasedWithoutAPool) {
  EXPECT_DEATH(std::thread([] { (void)[NSArray array]; }).join(), "autoreleased without a pool");
}

TEST_F(RuntimeTest, NilIsInNoCollection) {
  id nothing = nil;
  EXPECT_DEATH((void)@[ nothing ], "nil put into a collection");
  EXPECT_DEATH((void)@{@"key" : nothing}, "nil put into a collection");
  EXPECT_DEATH([[NSMutableArray arrayWithCapacity:1] addObject:nothing], "nil put into a collection");
}

TEST_F(RuntimeTest, WhatIsLeftBehindIsCounted) {
  const int before = objectivec::livingObjects()["Probe"];
  CFTypeRef left = nullptr;
  std::thread([&] { left = (__bridge_retained CFTypeRef)[[Probe alloc] init]; }).join();
  EXPECT_EQ(objectivec::livingObjects()["Probe"], before + 1);
  CFRelease(left);
  EXPECT_EQ(objectivec::livingObjects()["Probe"], before);
}

TEST_F(RuntimeTest, AWeakReferenceEndsWithItsObject) {
  __weak Probe* weak = nil;
  {
    Probe* const probe = [[Probe alloc] init];
    weak = probe;
    EXPECT_NE(weak, nil);
  }
  EXPECT_EQ(weak, nil);
}

TEST_F(RuntimeTest, APropertyThatCopiesABlockKeepsIt) {
  Probe* const probe = [[Probe alloc] init];
  for (int number : {1, 2}) {
    probe.block = ^{
      return number;
    };
  }
  EXPECT_EQ(probe.block(), 2);
}

}  // namespace
}  // namespace orvel
