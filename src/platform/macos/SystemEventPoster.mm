#include "platform/macos/SystemEventPoster.hpp"

#include "platform/macos/CFPointer.hpp"
#include "platform/macos/TextPieces.hpp"

#import <AppKit/AppKit.h>
#include <CoreGraphics/CoreGraphics.h>
#import <IOKit/pwr_mgt/IOPMLib.h>
#import <dispatch/dispatch.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace orvel {
namespace {

using Event = CFPointer<CGEventRef>;

constexpr CGKeyCode keyOfText = 0;
constexpr CGEventFlags noModifiers = 0;
constexpr std::uint32_t wheels = 2;

/// Less than any setting for the sleep of a display, so that it stays awake while a phone is used.
constexpr Seconds declarationInterval{5};

bool isMotion(MouseEventType type) {
  return type == MouseEventType::moved || type == MouseEventType::leftDragged || type == MouseEventType::rightDragged;
}

bool isRelease(MouseEventType type) {
  return type == MouseEventType::leftUp || type == MouseEventType::rightUp || type == MouseEventType::otherUp;
}

bool send(const Event& event) {
  if (event) CGEventPost(kCGHIDEventTap, event.get());
  return event != nullptr;
}

Event makeText(const std::u16string& text, bool down) {
  Event event(CGEventCreateKeyboardEvent(nullptr, keyOfText, down));
  if (!event) return event;
  // A new event has the modifiers that are held down, with which programs would take the text for a shortcut.
  CGEventSetFlags(event.get(), noModifiers);
  CGEventKeyboardSetUnicodeString(event.get(), text.size(), reinterpret_cast<const UniChar*>(text.data()));
  return event;
}

/// Null when the system cannot make it. It is made on the thread that posts, whichever that is: by way of the main
/// thread it would be overtaken by events that are posted after it. AppKit names events among what may be made on any
/// thread, as long as they stay there; this one has no window and goes before we return.
Event makeSystemDefined(const SystemDefinedEvent& event) {
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
    return Event(borrowed);
  }
}

/// Where the system says that the pointer is. It may not have handled what was just posted.
std::optional<Point> reportedLocation() {
  const Event blank(CGEventCreate(nullptr));
  if (!blank) return std::nullopt;
  const CGPoint location = CGEventGetLocation(blank.get());
  return Point{location.x, location.y};
}

}  // namespace

void UserActivity::declare() {
  if (!takeDue()) return;
  const std::shared_ptr<Guarded<State>> state = state_;
  dispatch_async(dispatch_get_global_queue(QOS_CLASS_USER_INITIATED, 0), ^{
    @autoreleasepool {
      renew(*state);
    }
  });
}

bool UserActivity::takeDue() {
  const Seconds now = clock_.now();
  return state_->withLock([now](State& state) {
    if (state.isRenewing || (state.declaredAt && now - *state.declaredAt < declarationInterval)) return false;
    state.declaredAt = now;
    state.isRenewing = true;
    return true;
  });
}

void UserActivity::renew(Guarded<State>& guarded) {
  IOPMAssertionID assertion = guarded.withLock([](const State& state) { return state.assertion; });
  // Who holds the phone looks at this display. A remote user would leave it dark.
  const bool isTaken =
      IOPMAssertionDeclareUserActivity(CFSTR("Orvel: input from a phone"), kIOPMUserActiveLocal, &assertion) == 0;
  guarded.withLock([=](State& state) {
    if (isTaken) state.assertion = assertion;
    state.isRenewing = false;
  });
}

// The threads that post live as long as the program and have no pool, and what the system leaves to one is its own
// affair.
bool SystemEventPoster::post(const MouseEvent& event) {
  if (!event.position) return false;  // the system has no event without one
  @autoreleasepool {
    if (!isRelease(event.type)) activity_.declare();
    const Event made(CGEventCreateMouseEvent(nullptr, static_cast<CGEventType>(event.type),
                                             {.x = event.position->x, .y = event.position->y},
                                             static_cast<CGMouseButton>(event.buttonCode)));
    if (!made) return false;
    if (isMotion(event.type)) {
      CGEventSetIntegerValueField(made.get(), kCGMouseEventDeltaX, event.deltaX);
      CGEventSetIntegerValueField(made.get(), kCGMouseEventDeltaY, event.deltaY);
    } else {
      CGEventSetIntegerValueField(made.get(), kCGMouseEventClickState, event.clickState);
    }
    if (trail_.isIdle()) {
      if (const auto before = reportedLocation()) trail_.begin(*before);
    }
    trail_.put(*event.position);
    return send(made);
  }
}

bool SystemEventPoster::post(const ScrollEvent& event) {
  @autoreleasepool {
    activity_.declare();
    return send(
        Event(CGEventCreateScrollWheelEvent2(nullptr, kCGScrollEventUnitPixel, wheels, event.wheel1, event.wheel2, 0)));
  }
}

bool SystemEventPoster::post(const KeyEvent& event) {
  if (event.staysDown) return true;  // modifiers come with each event, not with the key
  @autoreleasepool {
    if (event.down) activity_.declare();
    const Event made(CGEventCreateKeyboardEvent(nullptr, event.keyCode, event.down));
    if (!made) return false;
    CGEventSetFlags(made.get(), static_cast<CGEventFlags>(event.flags));
    return send(made);
  }
}

bool SystemEventPoster::post(const SystemDefinedEvent& event) {
  @autoreleasepool {
    activity_.declare();
    return send(makeSystemDefined(event));
  }
}

bool SystemEventPoster::post(const TextEvent& event) {
  @autoreleasepool {
    activity_.declare();
    const auto pieces = textPieces(event.text);
    if (pieces.empty()) return false;
    std::vector<Event> events;
    for (const std::u16string& piece : pieces) {
      for (const bool down : {true, false}) events.push_back(makeText(piece, down));
    }
    // All of the text or nothing of it.
    if (std::find(events.begin(), events.end(), nullptr) != events.end()) return false;
    return std::all_of(events.begin(), events.end(), send);
  }
}

std::optional<Point> SystemEventPoster::pointerLocation() {
  @autoreleasepool {
    const auto reported = reportedLocation();
    if (!reported) return std::nullopt;
    return trail_.resolve(*reported);
  }
}

}  // namespace orvel
