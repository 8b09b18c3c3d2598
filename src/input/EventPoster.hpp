#pragma once

#include "base/Geometry.hpp"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orvel {

/// Mouse event types by their macOS numbers.
enum class MouseEventType : std::uint32_t {
  leftDown = 1,
  leftUp = 2,
  rightDown = 3,
  rightUp = 4,
  moved = 5,
  leftDragged = 6,
  rightDragged = 7,
  otherDown = 25,
  otherUp = 26,
};

/// One pointer event. Button codes are 0 left, 1 right, 2 middle.
///
/// With a position the pointer is there when the event takes effect, and the deltas only describe the motion. Without
/// one the position is unknown: motion goes by the deltas from wherever the pointer is, and buttons act there.
struct MouseEvent {
  MouseEventType type = MouseEventType::moved;
  std::uint8_t buttonCode = 0;
  std::optional<Point> position{};
  std::int64_t clickState = 0;  ///< Event field 1: which click of a quick series; set on presses and releases.
  std::int64_t deltaX = 0;      ///< Event field 4: motion in points; set on motion.
  std::int64_t deltaY = 0;      ///< Event field 5.

  friend bool operator==(const MouseEvent&, const MouseEvent&) = default;
};

/// One wheel event in pixels. Positive is up (wheel 1) and left (wheel 2).
struct ScrollEvent {
  std::int32_t wheel1 = 0;
  std::int32_t wheel2 = 0;

  friend bool operator==(const ScrollEvent&, const ScrollEvent&) = default;
};

/// Modifier flags of keyboard events by their macOS values.
namespace modifier {
inline constexpr std::uint64_t shift = 0x20000;
inline constexpr std::uint64_t control = 0x40000;
inline constexpr std::uint64_t option = 0x80000;
inline constexpr std::uint64_t command = 0x100000;
inline constexpr std::uint64_t function = 0x800000;
}  // namespace modifier

/// One press or release of a key, named by its macOS virtual key code.
struct KeyEvent {
  std::uint16_t keyCode = 0;
  bool down = false;
  std::uint64_t flags = 0;

  /// On a press: modifier keys that somebody else holds and that must not modify it, where the flags do not say it all.
  std::vector<std::uint16_t> unwantedKeys{};

  /// On a release: somebody else holds the key, which stays down; only the modifiers that were pressed with it go up.
  bool staysDown = false;

  friend bool operator==(const KeyEvent&, const KeyEvent&) = default;
};

/// The press and the release of a key that carries text of its own, whatever the keyboard's layout has there.
struct TextEvent {
  std::u16string text;  ///< UTF-16.

  friend bool operator==(const TextEvent&, const TextEvent&) = default;
};

/// An event that a special key causes, in the numbers of macOS for type 14, "system defined".
struct SystemDefinedEvent {
  std::uint64_t flags = 0;
  std::int16_t subtype = 0;
  std::int64_t data1 = 0;
  std::int64_t data2 = 0;

  friend bool operator==(const SystemDefinedEvent&, const SystemDefinedEvent&) = default;
};

/// The numbers of the keys beside the keyboard proper: volume, brightness, transport.
namespace auxiliaryKey {
inline constexpr std::int16_t subtype = 8;
inline constexpr int typeShift = 16;               ///< data1 holds the key's type from this bit on,
inline constexpr std::int64_t stateMask = 0xff00;  ///< and in these bits
inline constexpr std::int64_t down = 0xa00;        ///< that it goes down
inline constexpr std::int64_t up = 0xb00;          ///< or up.
}  // namespace auxiliaryKey

/// Posts synthetic input into the desktop. Events take effect in the order of posting. Threads: any.
class EventPoster {
 public:
  virtual ~EventPoster() = default;

  /// Posts one event; it may wait until the next `flush`. False when the desktop has no such event or cannot be
  /// reached: then nothing was posted.
  virtual bool post(const MouseEvent& event) = 0;
  virtual bool post(const ScrollEvent& event) = 0;
  virtual bool post(const KeyEvent& event) = 0;
  virtual bool post(const SystemDefinedEvent& event) = 0;

  /// The same for a whole stroke, all of it or nothing, but not for the input path: it may last until the programs of
  /// the desktop are ready to take the text, for seconds when they hang. It needs no `flush`.
  virtual bool post(const TextEvent& event) = 0;

  /// Whether the desktop reports the pointer's position at any time and at little cost. Where it does not, mouse events
  /// carry no position but those that put it somewhere, and `pointerLocation` is asked for a snap alone.
  virtual bool tracksPointer() const = 0;

  /// Where the pointer is, events posted but not yet flushed included. Nothing when the desktop does not say.
  virtual std::optional<Point> pointerLocation() = 0;

  /// Sends the posted events on their way. Called once for a batch of events; returns without waiting for them.
  virtual void flush() = 0;
};

}  // namespace orvel
