#include "platform/macos/events/SystemDefined.hpp"

#include "input/InputEvent.hpp"

#import <AppKit/AppKit.h>

namespace orvel {

// Made on the thread that posts, whichever that is: by way of the main thread it would be overtaken by events that are
// posted after it. AppKit names events among what may be made on any thread, as long as they stay there; this one has
// no window and goes before we return.
CFPointer<CGEventRef> makeSystemDefined(const SystemDefinedEvent& event) {
  @autoreleasepool {
    NSEvent* made = [NSEvent otherEventWithType:NSEventTypeSystemDefined
                                       location:NSPoint {}
                                  modifierFlags:static_cast<NSEventModifierFlags>(event.flags)
                                      timestamp:0
                                   windowNumber:0
                                        context:nil
                                        subtype:event.subtype
                                          data1:event.data1
                                          data2:event.data2];
    // It belongs to the pool, which is gone when it is posted.
    CGEventRef borrowed = made.CGEvent;
    if (borrowed != nullptr) CFRetain(borrowed);
    return CFPointer<CGEventRef>(borrowed);
  }
}

}  // namespace orvel
