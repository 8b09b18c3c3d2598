#include "MacTest.hpp"

#include "runtime/Dispatch.hpp"
#include "runtime/ObjectiveC.hpp"

#import <AppKit/AppKit.h>
#import <Foundation/Foundation.h>
#import <ServiceManagement/ServiceManagement.h>

#include <chrono>
#include <thread>

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
  (void)dispatch_get_global_queue(QOS_CLASS_DEFAULT, 0);
  (void)NSAppleEventManager.sharedAppleEventManager;
  (void)NSApplication.sharedApplication;
  (void)NSProcessInfo.processInfo;
  (void)NSStatusBar.systemStatusBar;
  (void)NSNull.null;
}

/// What the threads of queues hold may be on its way back still.
void awaitObjects(const std::map<std::string, int>& expected) {
  using namespace std::chrono_literals;
  const auto end = std::chrono::steady_clock::now() + 2s;
  while (objectivec::livingObjects() != expected && std::chrono::steady_clock::now() < end) {
    std::this_thread::sleep_for(2ms);
  }
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
  dispatch::turnGlobalQueues();
  objc_autoreleasePoolPop(pool_);
  awaitObjects(before_);
  EXPECT_EQ(objectivec::livingObjects(), before_) << "An object was left behind, or one too many released.";
}

}  // namespace orvel
