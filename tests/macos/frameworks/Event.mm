// The part of AppKit's events that turns them into those of the system.

#include "frameworks/QuartzEventObject.hpp"

#import <AppKit/AppKit.h>

extern "C" void* objc_retainAutorelease(void* object);

@implementation NSEvent {
  QuartzEventObject* event_;
}
+ (NSEvent*)otherEventWithType:(NSEventType)type
                      location:(NSPoint)location
                 modifierFlags:(NSEventModifierFlags)flags
                     timestamp:(NSTimeInterval)time
                  windowNumber:(NSInteger)window
                       context:(NSGraphicsContext*)context
                       subtype:(short)subtype
                         data1:(NSInteger)data1
                         data2:(NSInteger)data2 {
  QuartzEventObject* made = fake::makeQuartzEvent(static_cast<std::uint32_t>(type));
  if (made == nil) return nil;
  fake::QuartzEvent& event = made->event_;
  event.position = {location.x, location.y};
  event.flags = flags;
  event.time = time;
  event.window = window;
  event.hasContext = context != nil;
  event.subtype = subtype;
  event.data1 = data1;
  event.data2 = data2;
  NSEvent* result = [[NSEvent alloc] init];
  result->event_ = made;
  return result;
}
// Another object each time, which the pool owns.
- (CGEventRef)CGEvent {
  QuartzEventObject* copy = fake::makeQuartzEvent(event_->event_.type);
  if (copy == nil) return nullptr;
  copy->event_ = event_->event_;
  return static_cast<CGEventRef>(objc_retainAutorelease((__bridge void*)copy));
}
@end
