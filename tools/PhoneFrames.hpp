#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

/// The binary input frames as a phone writes them. Threads: any.
namespace orvel::phone {

enum class MouseButton : std::uint8_t { left = 0, right = 1, middle = 2 };

enum class AppAction : std::uint8_t { activate = 0, quit = 1 };

/// The modifier bits of a key frame.
enum Modifier : std::uint8_t { command = 0x01, shift = 0x02, option = 0x04, control = 0x08, function = 0x10 };

/// The longest string that a text or application frame can carry, in bytes.
inline constexpr std::size_t longestFrameText = 65535;

namespace detail {

constexpr std::uint8_t lowByte(std::uint16_t value) {
  return static_cast<std::uint8_t>(value & 0xff);
}
constexpr std::uint8_t highByte(std::uint16_t value) {
  return static_cast<std::uint8_t>(value >> 8);
}

constexpr std::array<std::uint8_t, 5> twoNumbers(std::uint8_t opcode, std::uint16_t first, std::uint16_t second) {
  return {opcode, lowByte(first), highByte(first), lowByte(second), highByte(second)};
}

constexpr std::uint16_t fraction(double value) {
  return static_cast<std::uint16_t>(std::clamp(value, 0.0, 1.0) * 65535.0 + 0.5);
}

}  // namespace detail

/// Relative motion in points.
constexpr std::array<std::uint8_t, 5> moveFrame(std::int16_t dx, std::int16_t dy) {
  return detail::twoNumbers(1, static_cast<std::uint16_t>(dx), static_cast<std::uint16_t>(dy));
}

/// One press or release.
constexpr std::array<std::uint8_t, 3> buttonFrame(MouseButton button, bool down) {
  return {2, static_cast<std::uint8_t>(button), static_cast<std::uint8_t>(down ? 1 : 0)};
}

/// Wheel motion in pixels; positive is up and left.
constexpr std::array<std::uint8_t, 5> scrollFrame(std::int16_t dx, std::int16_t dy) {
  return detail::twoNumbers(3, static_cast<std::uint16_t>(dx), static_cast<std::uint16_t>(dy));
}

/// One key press or release by its macOS virtual key code; `modifiers` is a sum of `Modifier` bits.
constexpr std::array<std::uint8_t, 5> keyFrame(std::uint16_t keyCode, bool down, std::uint8_t modifiers) {
  return {4, detail::lowByte(keyCode), detail::highByte(keyCode), static_cast<std::uint8_t>(down ? 1 : 0), modifiers};
}

/// One media key by its number.
constexpr std::array<std::uint8_t, 2> mediaFrame(std::uint8_t code) {
  return {6, code};
}

/// A press and a release; `count` says which click of a quick series it is.
constexpr std::array<std::uint8_t, 3> clickFrame(MouseButton button, std::uint8_t count) {
  return {8, static_cast<std::uint8_t>(button), count};
}

/// A place on the main display: 0,0 is its left top, 1,1 its right bottom edge; values outside are clamped.
constexpr std::array<std::uint8_t, 5> moveAbsoluteFrame(double nx, double ny) {
  return detail::twoNumbers(9, detail::fraction(nx), detail::fraction(ny));
}

/// Text to be typed, UTF-8. Nothing when it is longer than a frame can carry.
inline std::optional<std::vector<std::uint8_t>> textFrame(std::string_view text) {
  if (text.size() > longestFrameText) return std::nullopt;
  const auto length = static_cast<std::uint16_t>(text.size());
  std::vector<std::uint8_t> frame = {5, detail::lowByte(length), detail::highByte(length)};
  frame.insert(frame.end(), text.begin(), text.end());
  return frame;
}

/// Activates or quits an application. Nothing when its identifier is longer than a frame can carry.
inline std::optional<std::vector<std::uint8_t>> appFrame(AppAction action, std::string_view bundleID) {
  if (bundleID.size() > longestFrameText) return std::nullopt;
  const auto length = static_cast<std::uint16_t>(bundleID.size());
  std::vector<std::uint8_t> frame = {7, static_cast<std::uint8_t>(action), detail::lowByte(length),
                                     detail::highByte(length)};
  frame.insert(frame.end(), bundleID.begin(), bundleID.end());
  return frame;
}

}  // namespace orvel::phone
