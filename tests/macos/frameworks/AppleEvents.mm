#include "frameworks/AppleEvents.hpp"

#include "frameworks/Messages.hpp"

@implementation NSAppleEventDescriptor
@end

@implementation NSAppleEventManager
+ (NSAppleEventManager*)sharedAppleEventManager {
  static NSAppleEventManager* const manager = [[NSAppleEventManager alloc] init];
  return manager;
}
- (void)setEventHandler:(id)handler
            andSelector:(SEL)selector
          forEventClass:(AEEventClass)eventClass
             andEventID:(AEEventID)eventID {
  fake::AppleEvents& events = fake::appleEvents();
  events.handler = handler;
  events.selector = selector;
  events.type = eventClass;
  events.event = eventID;
}
- (void)removeEventHandlerForEventClass:(AEEventClass)eventClass andEventID:(AEEventID)eventID {
  fake::AppleEvents& events = fake::appleEvents();
  if (events.handler == nil || events.type != eventClass || events.event != eventID) return;
  events = {.removed = events.removed + 1};
}
@end

namespace fake {

AppleEvents& appleEvents() {
  static AppleEvents events;
  return events;
}

bool sendAppleEvent(AEEventClass type, AEEventID event) {
  const AppleEvents& events = appleEvents();
  if (events.handler == nil || events.type != type || events.event != event) return false;
  @autoreleasepool {
    sendMessage(events.handler, events.selector, [[NSAppleEventDescriptor alloc] init],
                [[NSAppleEventDescriptor alloc] init]);
  }
  return true;
}

}  // namespace fake
