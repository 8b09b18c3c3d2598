#include "platform/linux/x11/keyboard/CharacterKeys.hpp"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace orvel {
namespace {

constexpr bool isOnKeypad(xkb_keysym_t keysym) {
  return keysym >= XKB_KEY_KP_Space && keysym <= XKB_KEY_KP_Equal;
}

/// The modifier key that means nothing but `keysym`; 0 when there is none to be pressed.
std::uint8_t modifierKey(const KeyboardMap& map, const CharacterKeys::Situation& situation, xkb_keysym_t keysym) {
  for (int keyCode = map.firstKeyCode(); keyCode <= map.lastKeyCode(); ++keyCode) {
    const auto code = static_cast<std::uint8_t>(keyCode);
    if (map.meansOnly(code, keysym) && map.modifiersOf(code) != 0 && !situation.downKeys[code]) return code;
  }
  return 0;
}

/// Lets one modifier key go and presses another instead, if they differ.
void exchange(std::vector<KeyChange>& changes, std::uint8_t& held, std::uint8_t needed) {
  const std::uint8_t before = std::exchange(held, needed);
  if (before == needed) return;
  if (before != 0) changes.push_back({.keyCode = before, .down = false});
  if (needed != 0) changes.push_back({.keyCode = needed, .down = true});
}

}  // namespace

CharacterKeys::CharacterKeys(const KeyboardMap& map, const Situation& situation)
    : levelKey_(modifierKey(map, situation, XKB_KEY_ISO_Level3_Shift)) {
  const std::uint8_t leftShift = modifierKey(map, situation, XKB_KEY_Shift_L);
  const std::uint8_t shift = leftShift != 0 ? leftShift : modifierKey(map, situation, XKB_KEY_Shift_R);
  add(map, situation, {});
  if (shift != 0) add(map, situation, {.shiftKey = shift});
  if (levelKey_ != 0) add(map, situation, {.levelKey = levelKey_});
  if (shift != 0 && levelKey_ != 0) add(map, situation, {.shiftKey = shift, .levelKey = levelKey_});
}

void CharacterKeys::add(const KeyboardMap& map, const Situation& situation, const Chord& modifierKeys) {
  const KeyboardMap::Modifiers modifiers =
      situation.modifiers | map.modifiersOf(modifierKeys.shiftKey) | map.modifiersOf(modifierKeys.levelKey);
  // Programs may take the keys above for more than the character on them.
  const std::uint8_t last = std::min(KeyboardMap::lastWritingKey, map.lastKeyCode());
  for (std::uint8_t keyCode = map.firstKeyCode(); keyCode <= last; ++keyCode) {
    if (situation.downKeys[keyCode]) continue;
    const xkb_keysym_t keysym = map.keysym(keyCode, situation.group, modifiers);
    const char32_t character = isOnKeypad(keysym) ? U'\0' : xkb_keysym_to_utf32(keysym);
    Chord chord = modifierKeys;
    chord.keyCode = keyCode;
    if (character != U'\0') chords_.try_emplace(character, chord);
  }
}

std::optional<Chord> CharacterKeys::chord(char32_t character) const {
  const auto found = chords_.find(character);
  if (found == chords_.end()) return std::nullopt;
  return found->second;
}

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
