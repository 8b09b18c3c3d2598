#pragma once

#include "platform/linux/x11/keyboard/KeyQueue.hpp"

#include <cstdint>
#include <vector>

namespace orvel {

/// A key, and the modifier keys that are held down with it for a character. Threads: as any value.
struct Chord {
  std::uint8_t keyCode = 0;
  std::uint8_t shiftKey = 0;  ///< 0 when it is not needed.
  std::uint8_t levelKey = 0;  ///< The one for the third level, often AltGr; 0 when it is not needed.
};

/// The changes of keys that play the chords, while the keys in `released` are up; these are down before and after.
std::vector<KeyChange> changesFor(const std::vector<Chord>& chords, const std::vector<std::uint8_t>& released);

}  // namespace orvel
