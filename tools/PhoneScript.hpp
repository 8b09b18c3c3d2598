#pragma once

#include "tools/KeyNames.hpp"
#include "tools/MirrorWish.hpp"
#include "tools/PhoneFrames.hpp"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace orvel::phone {

/// One command of the small phone's command line.
namespace step {

struct Pair {};

struct Move {
  std::int16_t dx = 0;
  std::int16_t dy = 0;
};

struct MoveTo {
  double nx = 0;
  double ny = 0;
};

struct Button {
  MouseButton button = MouseButton::left;
  bool down = false;
};

struct Click {
  MouseButton button = MouseButton::left;
  std::uint8_t count = 1;  ///< How many clicks.
};

struct Drag {
  std::int16_t dx = 0;
  std::int16_t dy = 0;
};

struct Scroll {
  std::int16_t dx = 0;
  std::int16_t dy = 0;
};

struct Key {
  KeyChord chord;
  bool down = false;
  bool up = false;
};

struct Text {
  std::string text;        ///< UTF-8.
  bool fromInput = false;  ///< Whether it is still to be read from the standard input.
};

struct Media {
  std::uint8_t key = 0;
};

struct Apps {
  bool asJSON = false;
};

struct Icons {
  std::string folder;
  std::vector<std::string> ids;  ///< All that the host lists when empty.
};

struct App {
  AppAction action = AppAction::activate;
  std::string id;
};

struct Mirror {
  std::optional<double> seconds{};  ///< For how long; until somebody ends it when there is no number.
  MirrorWish wish{};
  std::optional<std::string> folder{};  ///< Where to save the frames.
  bool inWindow = false;
};

struct Snap {};

struct Reveal {};

struct Ping {};

struct Wait {
  double seconds = 0;
};

}  // namespace step

using Step = std::variant<step::Pair, step::Move, step::MoveTo, step::Button, step::Click, step::Drag, step::Scroll,
                          step::Key, step::Text, step::Media, step::Apps, step::Icons, step::App, step::Mirror,
                          step::Snap, step::Reveal, step::Ping, step::Wait>;

/// The commands in `words`, or a sentence that names the word that is wrong. Threads: any.
std::variant<std::vector<Step>, std::string> parseScript(std::span<const std::string> words);

/// Whether the host serves this step only to a phone that has proved the token. Threads: any.
bool needsPairing(const Step& step);

/// The even parts of a drag, each no longer than ten points in either direction. Threads: any.
std::vector<step::Move> partsOf(const step::Drag& drag);

}  // namespace orvel::phone
