#include "MacTest.hpp"

#include "runtime/Dispatch.hpp"
#include "runtime/ObjectiveC.hpp"

#import <AppKit/AppKit.h>
#import <Foundation/Foundation.h>
#import <ServiceManagement/ServiceManagement.h>

extern "C" {
void* objc_autoreleasePoolPush();
void objc_autoreleasePoolPop(void* pool);
}

namespace orvel {
namespace {

/// Those that a program has one of, for as long as it runs.
void makeSharedObjects() {
  (void)NSWorkspace.sharedWorkspace;
  (void)NSColorSpace.sRGBColorSpace;
  (void)NSFileManager.defaultManager;
  (void)NSNotificationCenter.defaultCenter;
  (void)NSUserDefaults.standardUserDefaults;
  (void)SMAppService.mainAppService;
  (void)dispatch_get_main_queue();
  (void)NSAppleEventManager.sharedAppleEventManager;
  (void)NSApplication.sharedApplication;
  (void)NSProcessInfo.processInfo;
  (void)NSStatusBar.systemStatusBar;
}

}  // namespace

void MacTest::SetUp() {
  @autoreleasepool {
    makeSharedObjects();
  }
  before_ = objectivec::livingObjects();
  pool_ = objc_autoreleasePoolPush();
}

void MacTest::TearDown() {
  dispatch::turnMainQueue();
  objc_autoreleasePoolPop(pool_);
  EXPECT_EQ(objectivec::livingObjects(), before_) << "An object was left behind, or one too many released.";
}

}  // namespace orvel
