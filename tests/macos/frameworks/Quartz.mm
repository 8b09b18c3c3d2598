#include "frameworks/Quartz.hpp"

#include "frameworks/DisplayList.hpp"
#include "frameworks/QuartzEventObject.hpp"
#include "runtime/Foundation.hpp"

#include <algorithm>
#include <cstdlib>

@implementation QuartzEventObject
@end

namespace {

constexpr std::uint32_t keyDown = 10;
constexpr std::uint32_t keyUp = 11;
constexpr std::uint32_t scrollWheel = 22;
constexpr std::size_t unitsInEvent = 20;

bool hasPosition(std::uint32_t type) {
  return (type >= 1 && type <= 7) || (type >= 25 && type <= 27);
}

// Whoever uses no event is caught at once, as it may have crashed on a Mac.
fake::QuartzEvent& eventOf(CGEventRef reference) {
  if (reference == nullptr) std::abort();
  QuartzEventObject* object = (__bridge id)(void*)reference;
  // A message, so that an event that has gone is noticed.
  if (![object isKindOfClass:QuartzEventObject.class]) std::abort();
  return object->event_;
}

// As any of the system's functions may, without a word about it.
void leaveToPool() {
  objectivec::text("for the pool");
}

bool contains(const CGRect& bounds, const std::array<double, 2>& place) {
  return place[0] >= bounds.origin.x && place[0] < bounds.origin.x + bounds.size.width && place[1] >= bounds.origin.y &&
         place[1] < bounds.origin.y + bounds.size.height;
}

/// Where the pointer comes to be that is put at `wanted`: outside of all displays, at the edge of its own.
std::array<double, 2> onDisplay(const std::array<double, 2>& pointer, const std::array<double, 2>& wanted) {
  const auto& displays = fake::displayList().active;
  const auto holds = [](const auto& place) {
    return [&place](const fake::Display& display) { return contains(display.bounds, place); };
  };
  const auto own = std::ranges::find_if(displays, holds(pointer));
  if (own == displays.end() || std::ranges::any_of(displays, holds(wanted))) return wanted;
  const auto& [origin, size] = own->bounds;
  return {std::clamp(wanted[0], origin.x, origin.x + size.width - 1),
          std::clamp(wanted[1], origin.y, origin.y + size.height - 1)};
}

CGEventRef owned(QuartzEventObject* object) {
  return (CGEventRef)(__bridge_retained void*)object;
}

}  // namespace

namespace fake {

Quartz& quartz() {
  static Quartz state;
  return state;
}

void letPointerArrive(int places) {
  auto& waiting = quartz().pointerGoesTo;
  for (; places > 0 && !waiting.empty(); --places) {
    quartz().pointer = onDisplay(quartz().pointer, waiting.front());
    waiting.pop_front();
  }
}

QuartzEventObject* makeQuartzEvent(std::uint32_t type) {
  if (quartz().creationsToFail > 0) {
    --quartz().creationsToFail;
    return nil;
  }
  if (quartz().creationsLeft && (*quartz().creationsLeft)-- <= 0) return nil;
  QuartzEventObject* made = [[QuartzEventObject alloc] init];
  made->event_.type = type;
  made->event_.flags = quartz().heldModifiers;
  return made;
}

}  // namespace fake

extern "C" {

CGEventRef CGEventCreate(CGEventSourceRef) {
  QuartzEventObject* made = fake::makeQuartzEvent(0);
  if (made != nil) made->event_.position = fake::quartz().pointer;
  return owned(made);
}

CGEventRef CGEventCreateMouseEvent(CGEventSourceRef, CGEventType type, CGPoint position, CGMouseButton button) {
  QuartzEventObject* made = fake::makeQuartzEvent(type);
  if (made == nil) return nullptr;
  made->event_.position = {position.x, position.y};
  made->event_.button = button;
  return owned(made);
}

CGEventRef CGEventCreateKeyboardEvent(CGEventSourceRef, CGKeyCode key, bool down) {
  QuartzEventObject* made = fake::makeQuartzEvent(down ? keyDown : keyUp);
  if (made != nil) made->event_.key = key;
  return owned(made);
}

CGEventRef CGEventCreateScrollWheelEvent2(CGEventSourceRef, CGScrollEventUnit units, uint32_t count, int32_t wheel1,
                                          int32_t wheel2, int32_t wheel3) {
  QuartzEventObject* made = fake::makeQuartzEvent(scrollWheel);
  if (made == nil) return nullptr;
  made->event_.scrollUnit = units;
  made->event_.wheels = {wheel1, wheel2, wheel3};
  made->event_.wheels.resize(count);
  return owned(made);
}

CGPoint CGEventGetLocation(CGEventRef event) {
  leaveToPool();
  const auto& position = eventOf(event).position;
  return {position[0], position[1]};
}

void CGEventSetIntegerValueField(CGEventRef event, CGEventField field, int64_t value) {
  eventOf(event).fields[field] = value;
}

void CGEventSetFlags(CGEventRef event, CGEventFlags flags) {
  eventOf(event).flags = flags;
}

void CGEventKeyboardSetUnicodeString(CGEventRef event, UniCharCount length, const UniChar* text) {
  eventOf(event).text.assign(text, text + std::min<std::size_t>(length, unitsInEvent));
}

void CGEventPost(CGEventTapLocation tap, CGEventRef event) {
  fake::QuartzEvent posted = eventOf(event);
  posted.tap = tap;
  leaveToPool();
  if (hasPosition(posted.type)) fake::quartz().pointerGoesTo.push_back(posted.position);
  if (!fake::quartz().isSlow) fake::letPointerArrive(1);
  fake::quartz().posted.push_back(posted);
}

}  // extern "C"
