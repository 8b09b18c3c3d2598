#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <array>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <vector>

/// The events of the system, in place of CoreGraphics: they are recorded as they are posted, and move the pointer,
/// which stays on the displays, if there are any.
namespace fake {

struct QuartzEvent {
  std::optional<CGEventTapLocation> tap;  ///< Where it was posted.
  std::uint32_t type = 0;
  std::array<double, 2> position{};
  std::uint32_t button = 0;
  std::uint16_t key = 0;
  CGEventFlags flags = 0;
  std::map<std::uint32_t, std::int64_t> fields;  ///< Those that were set.
  std::u16string text;
  std::optional<CGScrollEventUnit> scrollUnit;
  std::vector<std::int32_t> wheels;
  double time = 0;
  long window = 0;
  bool hasContext = false;
  int subtype = 0;
  std::int64_t data1 = 0;
  std::int64_t data2 = 0;

  friend bool operator==(const QuartzEvent&, const QuartzEvent&) = default;
};

struct Quartz {
  std::vector<QuartzEvent> posted;
  std::array<double, 2> pointer{};
  bool isSlow = false;  ///< Whether the pointer moves only when `letPointerArrive` says so.
  std::deque<std::array<double, 2>> pointerGoesTo;
  CGEventFlags heldModifiers = 0;    ///< What a new event has.
  std::optional<int> creationsLeft;  ///< How many more events can be made; nothing: any number.
  int creationsToFail = 0;           ///< How many of the next events cannot be made.
};

/// Tests set it anew.
Quartz& quartz();

/// Moves the pointer to the next places that it was put to while it was slow.
void letPointerArrive(int places);

}  // namespace fake
