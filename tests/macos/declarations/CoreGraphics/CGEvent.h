#pragma once

#pragma clang assume_nonnull begin

typedef struct __CGEvent* CGEventRef;
typedef struct __CGEventSource* CGEventSourceRef;
typedef uint16_t CGKeyCode;
typedef uint64_t CGEventFlags;

typedef enum CGEventType : uint32_t {
  kCGEventLeftMouseDown = 1,
  kCGEventLeftMouseUp = 2,
  kCGEventRightMouseDown = 3,
  kCGEventRightMouseUp = 4,
  kCGEventMouseMoved = 5,
  kCGEventLeftMouseDragged = 6,
  kCGEventRightMouseDragged = 7,
  kCGEventOtherMouseDown = 25,
  kCGEventOtherMouseUp = 26,
} CGEventType;
typedef enum CGMouseButton : uint32_t {
  kCGMouseButtonLeft = 0,
  kCGMouseButtonRight = 1,
  kCGMouseButtonCenter = 2,
} CGMouseButton;
typedef enum CGEventField : uint32_t {
  kCGMouseEventClickState = 1,
  kCGMouseEventDeltaX = 4,
  kCGMouseEventDeltaY = 5,
} CGEventField;
typedef enum CGScrollEventUnit : uint32_t {
  kCGScrollEventUnitPixel = 0,
  kCGScrollEventUnitLine = 1,
} CGScrollEventUnit;
typedef enum CGEventTapLocation : uint32_t {
  kCGHIDEventTap = 0,
  kCGSessionEventTap = 1,
} CGEventTapLocation;

MAC_EXTERN CGEventRef _Nullable CGEventCreate(CGEventSourceRef _Nullable source) MAC_RETURNS_RETAINED MAC_SINCE(10.4);
MAC_EXTERN CGEventRef _Nullable CGEventCreateMouseEvent(CGEventSourceRef _Nullable source, CGEventType type,
                                                        CGPoint position, CGMouseButton button) MAC_RETURNS_RETAINED
    MAC_SINCE(10.4);
MAC_EXTERN CGEventRef _Nullable CGEventCreateKeyboardEvent(CGEventSourceRef _Nullable source, CGKeyCode key,
                                                           bool keyDown) MAC_RETURNS_RETAINED MAC_SINCE(10.4);
MAC_EXTERN CGEventRef _Nullable CGEventCreateScrollWheelEvent2(CGEventSourceRef _Nullable source,
                                                               CGScrollEventUnit units, uint32_t wheelCount,
                                                               int32_t wheel1, int32_t wheel2,
                                                               int32_t wheel3) MAC_RETURNS_RETAINED MAC_SINCE(10.13);
MAC_EXTERN CGPoint CGEventGetLocation(CGEventRef _Nullable event) MAC_SINCE(10.4);
MAC_EXTERN void CGEventSetIntegerValueField(CGEventRef _Nullable event, CGEventField field, int64_t value)
    MAC_SINCE(10.4);
MAC_EXTERN void CGEventSetFlags(CGEventRef _Nullable event, CGEventFlags flags) MAC_SINCE(10.4);
MAC_EXTERN void CGEventKeyboardSetUnicodeString(CGEventRef _Nullable event, UniCharCount length,
                                                const UniChar* _Nullable text) MAC_SINCE(10.4);
MAC_EXTERN void CGEventPost(CGEventTapLocation tap, CGEventRef _Nullable event) MAC_SINCE(10.4);

#pragma clang assume_nonnull end
