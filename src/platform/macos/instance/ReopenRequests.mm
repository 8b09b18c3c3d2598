#include "platform/macos/instance/ReopenRequests.hpp"

#import <AppKit/AppKit.h>
#import <CoreServices/CoreServices.h>

#include <utility>

@interface OrvelReopenHandler : NSObject {
 @public
  std::function<void()> reopened_;
}
- (void)handleEvent:(NSAppleEventDescriptor*)event withReplyEvent:(NSAppleEventDescriptor*)reply;
@end

@implementation OrvelReopenHandler

- (void)handleEvent:(NSAppleEventDescriptor*)event withReplyEvent:(NSAppleEventDescriptor*)reply {
  reopened_();
}

@end

namespace orvel {

struct ReopenRequests::Listening {
  explicit Listening(std::function<void()> reopened) : handler([[OrvelReopenHandler alloc] init]) {
    handler->reopened_ = std::move(reopened);
    // The application puts handlers of its own in place when it is launched, so ours comes after.
    launch = [NSNotificationCenter.defaultCenter addObserverForName:NSApplicationDidFinishLaunchingNotification
                                                             object:nil
                                                              queue:nil
                                                         usingBlock:^(NSNotification*) {
                                                           listen();
                                                         }];
  }

  ~Listening() {
    [NSNotificationCenter.defaultCenter removeObserver:launch];
    if (!hasBegun) return;
    [NSAppleEventManager.sharedAppleEventManager removeEventHandlerForEventClass:kCoreEventClass
                                                                      andEventID:kAEReopenApplication];
  }

  void listen() {
    hasBegun = true;
    [NSAppleEventManager.sharedAppleEventManager setEventHandler:handler
                                                     andSelector:@selector(handleEvent:withReplyEvent:)
                                                   forEventClass:kCoreEventClass
                                                      andEventID:kAEReopenApplication];
  }

  OrvelReopenHandler* const handler;
  id<NSObject> launch;
  bool hasBegun = false;
};

ReopenRequests::ReopenRequests(std::function<void()> reopened)
    : listening_(std::make_unique<Listening>(std::move(reopened))) {}

ReopenRequests::~ReopenRequests() = default;

}  // namespace orvel
