#include "frameworks/EventMonitor.hpp"

#include <algorithm>
#include <cstdlib>
#include <vector>

@interface EventMonitor : NSObject {
 @public
  NSEventMask mask_;
  void (^handler_)(NSEvent*);
}
@end
@implementation EventMonitor
@end

namespace {

std::vector<EventMonitor*>& monitors() {
  static std::vector<EventMonitor*> all;
  return all;
}

bool refusesMonitors = false;

}  // namespace

@implementation NSEvent (Monitor)
+ (id)addGlobalMonitorForEventsMatchingMask:(NSEventMask)mask handler:(void (^)(NSEvent*))handler {
  if (refusesMonitors) return nil;
  EventMonitor* monitor = [[EventMonitor alloc] init];
  monitor->mask_ = mask;
  monitor->handler_ = handler;
  monitors().push_back(monitor);
  return monitor;
}
+ (id)addLocalMonitorForEventsMatchingMask:(NSEventMask)mask handler:(NSEvent* (^)(NSEvent*))handler {
  return [[EventMonitor alloc] init];
}
+ (void)removeMonitor:(id)monitor {
  const auto found = std::ranges::find(monitors(), monitor);
  if (found == monitors().end()) std::abort();
  monitors().erase(found);
}
@end

namespace fake {

void sendToMonitors(NSEventMask kind) {
  @autoreleasepool {
    NSEvent* event = [[NSEvent alloc] init];
    // Not kept while they are notified: whoever ends its watch then loses its block in the middle of it.
    std::vector<EventMonitor * __weak> notified(monitors().begin(), monitors().end());
    for (const auto& each : notified) {
      void (^__unsafe_unretained handler)(NSEvent*) = nil;
      if (EventMonitor* monitor = each; monitor != nil && (monitor->mask_ & kind) != 0) handler = monitor->handler_;
      if (handler != nil) handler(event);
    }
  }
}

std::size_t monitorCount() {
  return monitors().size();
}

void refuseMonitors(bool refuses) {
  refusesMonitors = refuses;
}

}  // namespace fake
