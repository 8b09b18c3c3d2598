#include "platform/linux/x11/keyboard/Chord.hpp"

#include <cstddef>
#include <utility>

namespace orvel {
namespace {

/// Lets one modifier key go and presses another instead, if they differ.
void exchange(std::vector<KeyChange>& changes, std::uint8_t& held, std::uint8_t needed) {
  const std::uint8_t before = std::exchange(held, needed);
  if (before == needed) return;
  if (before != 0) changes.push_back({.keyCode = before, .down = false});
  if (needed != 0) changes.push_back({.keyCode = needed, .down = true});
}

}  // namespace

std::vector<KeyChange> changesFor(const std::vector<Chord>& chords, const std::vector<std::uint8_t>& released) {
  constexpr std::size_t mostPerChord = 6;
  std::vector<KeyChange> changes;
  changes.reserve(2 * released.size() + mostPerChord * (chords.size() + 1));
  for (const std::uint8_t key : released) changes.push_back({.keyCode = key, .down = false});
  Chord held;
  for (const Chord& chord : chords) {
    exchange(changes, held.shiftKey, chord.shiftKey);
    exchange(changes, held.levelKey, chord.levelKey);
    changes.push_back({.keyCode = chord.keyCode, .down = true});
    changes.push_back({.keyCode = chord.keyCode, .down = false});
  }
  exchange(changes, held.shiftKey, 0);
  exchange(changes, held.levelKey, 0);
  for (const std::uint8_t key : released) changes.push_back({.keyCode = key, .down = true});
  return changes;
}

}  // namespace orvel
