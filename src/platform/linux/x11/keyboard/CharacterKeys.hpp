#pragma once

#include "platform/linux/keyboard/KeyPositions.hpp"
#include "platform/linux/x11/keyboard/KeyboardMap.hpp"

#include <bitset>
#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

namespace orvel {

/// A key, and the modifier keys that are held down with it for a character. Threads: as any value.
struct Chord {
  std::uint8_t keyCode = 0;
  std::uint8_t shiftKey = 0;  ///< 0 when it is not needed.
  std::uint8_t levelKey = 0;  ///< The one for the third level, often AltGr; 0 when it is not needed.
};

/// Which keys write which characters, as the keyboard stands: its layout, Caps Lock, what is held down.
///
/// Threads: any, for it does not change.
class CharacterKeys {
 public:
  struct Situation {
    std::uint8_t group = 0;
    KeyboardMap::Modifiers modifiers = 0;  ///< Those in force without our doing.
    std::bitset<256> downKeys;             ///< By key code: they cannot be pressed.
  };

  CharacterKeys(const KeyboardMap& map, const Situation& situation);

  /// The keys for a character, with as few modifiers as possible. Nothing when it has none.
  std::optional<Chord> chord(char32_t character) const;

  /// The key for the third level, which writes nothing by itself; 0 when there is none.
  std::uint8_t levelKey() const { return levelKey_; }

 private:
  void add(const KeyboardMap& map, const Situation& situation, const Chord& modifierKeys);

  const std::uint8_t levelKey_;
  std::unordered_map<char32_t, Chord> chords_;
};

/// The changes of keys that play the chords, while the keys in `released` are up; these are down before and after.
std::vector<KeyChange> changesFor(const std::vector<Chord>& chords, const std::vector<std::uint8_t>& released);

}  // namespace orvel
