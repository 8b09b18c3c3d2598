#include "input/FrameDecoder.hpp"

#include "base/UTF8.hpp"

#include <algorithm>
#include <array>
#include <cstddef>

namespace orvel::FrameDecoder {
namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::array<std::size_t, 10> minimumLengths = {0, 5, 3, 5, 5, 3, 2, 4, 3, 5};
constexpr double absoluteRange = 65535.0;

std::optional<Opcode> opcode(std::uint8_t rawValue) {
  if (rawValue < 1 || rawValue > 9) return std::nullopt;
  return static_cast<Opcode>(rawValue);
}

std::uint16_t unsigned16(Bytes frame, std::size_t offset) {
  return static_cast<std::uint16_t>(frame[offset] | frame[offset + 1] << 8);
}

std::int16_t signed16(Bytes frame, std::size_t offset) {
  return static_cast<std::int16_t>(unsigned16(frame, offset));
}

bool isPressed(std::uint8_t state) {
  return state == 1;
}

/// The string whose byte length stands in the two bytes before `offset`.
std::optional<std::string> string(Bytes frame, std::size_t offset) {
  const std::size_t length = unsigned16(frame, offset - 2);
  if (offset + length > frame.size()) return std::nullopt;
  std::string text(frame.begin() + static_cast<std::ptrdiff_t>(offset),
                   frame.begin() + static_cast<std::ptrdiff_t>(offset + length));
  if (!isValidUTF8(text)) return std::nullopt;
  return text;
}

std::optional<Command> decodeText(Bytes frame) {
  auto text = string(frame, 3);
  if (!text) return std::nullopt;
  return Text{*std::move(text)};
}

std::optional<Command> decodeApp(Bytes frame) {
  auto bundleID = string(frame, 4);
  if (!bundleID) return std::nullopt;
  return App{frame[1], *std::move(bundleID)};
}

}  // namespace

std::optional<Command> decode(Bytes frame) {
  if (frame.empty()) return std::nullopt;
  const auto kind = opcode(frame[0]);
  if (!kind || frame.size() < minimumLengths[frame[0]]) return std::nullopt;
  switch (*kind) {
    case Opcode::move:
      return Move{static_cast<double>(signed16(frame, 1)), static_cast<double>(signed16(frame, 3))};
    case Opcode::button:
      return Button{frame[1], isPressed(frame[2])};
    case Opcode::scroll:
      return Scroll{signed16(frame, 1), signed16(frame, 3)};
    case Opcode::key:
      return Key{unsigned16(frame, 1), isPressed(frame[3]), frame[4]};
    case Opcode::text:
      return decodeText(frame);
    case Opcode::media:
      return Media{frame[1]};
    case Opcode::app:
      return decodeApp(frame);
    case Opcode::click:
      return Click{frame[1], std::max<int>(frame[2], 1)};
    case Opcode::moveAbsolute:
      return MoveAbsolute{unsigned16(frame, 1) / absoluteRange, unsigned16(frame, 3) / absoluteRange};
  }
  return std::nullopt;
}

bool isForPointer(Bytes frame) {
  const auto kind = frame.empty() ? std::nullopt : opcode(frame[0]);
  return kind == Opcode::move || kind == Opcode::button || kind == Opcode::scroll || kind == Opcode::click ||
         kind == Opcode::moveAbsolute;
}

}  // namespace orvel::FrameDecoder
