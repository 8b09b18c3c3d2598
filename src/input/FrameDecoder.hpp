#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <variant>

namespace orvel {

/// Turns one binary input frame into a command. Stateless; takes no lock and, but for the strings of text and
/// application frames, allocates nothing. Threads: any.
namespace FrameDecoder {

/// The first byte of every frame.
enum class Opcode : std::uint8_t {
  move = 1,
  button = 2,
  scroll = 3,
  key = 4,
  text = 5,
  media = 6,
  app = 7,
  click = 8,
  moveAbsolute = 9,
};

struct Move {
  double dx = 0;  ///< Points.
  double dy = 0;
};

struct Button {
  std::uint8_t button = 0;
  bool down = false;
};

struct Click {
  std::uint8_t button = 0;
  int count = 1;  ///< At least 1.
};

struct Scroll {
  int dx = 0;  ///< Pixels.
  int dy = 0;
};

struct Key {
  std::uint16_t keyCode = 0;  ///< A macOS virtual key code.
  bool down = false;
  std::uint8_t modifiers = 0;  ///< Bits: 1 command, 2 shift, 4 option, 8 control, 16 function.
};

struct Text {
  std::string text;
};

struct Media {
  std::uint8_t code = 0;
};

struct App {
  std::uint8_t action = 0;  ///< 1 quits, every other value activates.
  std::string bundleID;
};

struct MoveAbsolute {
  double nx = 0;  ///< 0 to 1 of the main display.
  double ny = 0;
};

using Command = std::variant<Move, Button, Scroll, Key, Text, Media, App, Click, MoveAbsolute>;

/// The command of a frame, or nothing when the frame is empty, too short, of an unknown opcode, or carries a string
/// that does not fit or is not UTF-8. Bytes after the last field are ignored.
std::optional<Command> decode(std::span<const std::uint8_t> frame);

/// Whether a frame, by its opcode, is for the pointer and its buttons.
bool isForPointer(std::span<const std::uint8_t> frame);

}  // namespace FrameDecoder
}  // namespace orvel
