#include "platform/macos/SystemEventPoster.hpp"

#include "platform/macos/CFPointer.hpp"
#include "platform/macos/events/SystemDefined.hpp"
#include "platform/macos/events/TextPieces.hpp"

#include <CoreGraphics/CoreGraphics.h>

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

/// Where the system says that the pointer is. It may not have handled what was just posted.
std::optional<Point> reportedLocation() {
  const Event blank(CGEventCreate(nullptr));
  if (!blank) return std::nullopt;
  const CGPoint location = CGEventGetLocation(blank.get());
  return Point{location.x, location.y};
}

}  // namespace

// The threads that post live as long as the program and have no pool, and what the system leaves to one is its own
// affair.
bool SystemEventPoster::post(const MouseEvent& event) {
  @autoreleasepool {
    if (!isRelease(event.type)) activity_.declare();
    const Event made(CGEventCreateMouseEvent(nullptr, static_cast<CGEventType>(event.type),
                                             {.x = event.position.x, .y = event.position.y},
                                             static_cast<CGMouseButton>(event.buttonCode)));
    if (!made) return false;
    if (isMotion(event.type)) {
      CGEventSetIntegerValueField(made.get(), kCGMouseEventDeltaX, event.deltaX);
      CGEventSetIntegerValueField(made.get(), kCGMouseEventDeltaY, event.deltaY);
    } else {
      CGEventSetIntegerValueField(made.get(), kCGMouseEventClickState, event.clickState);
    }
    if (trail_.isCold()) {
      if (const auto before = reportedLocation()) trail_.begin(*before);
    }
    trail_.put(event.position);
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
