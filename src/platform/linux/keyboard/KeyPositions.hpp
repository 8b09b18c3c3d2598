#pragma once

#include "input/EventPoster.hpp"

#include <cstdint>
#include <optional>

namespace orvel {

/// One press or release of a key by its X key code, which is the kernel's and 8 more.
struct KeyChange {
  std::uint8_t keyCode = 0;
  bool down = false;

  friend bool operator==(const KeyChange&, const KeyChange&) = default;
};

/// Where the keys of a Mac keyboard are on this one. Stateless. Threads: any.
namespace KeyPositions {

/// The X key code of the key at the place where a Mac has the key of that virtual key code, whatever the layout has
/// there. Nothing for keys that only a Mac has, and for codes that no key has.
std::optional<std::uint8_t> keyCodeOf(std::uint16_t virtualKeyCode);

/// The change of the key for sound, brightness or playback that an event is about. Nothing for events of other kinds,
/// other keys, and other changes than down and up.
std::optional<KeyChange> changeOf(const SystemDefinedEvent& event);

}  // namespace KeyPositions
}  // namespace orvel
