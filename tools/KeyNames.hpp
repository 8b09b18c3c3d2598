#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orvel::phone {

/// One key with the modifiers to hold around it.
struct KeyChord {
  std::uint16_t keyCode = 0;  ///< A macOS virtual key code.
  std::uint8_t modifiers = 0;

  friend bool operator==(const KeyChord&, const KeyChord&) = default;
};

/// The key that a word such as "return", "cmd+c", "ctrl+shift+t" or "0x24" (a virtual key code) names, in any case.
/// Nothing when there is no such key or modifier. Threads: any.
std::optional<KeyChord> keyChord(std::string_view word);

/// The names of all keys, for people, in lines of at most 76 characters. Threads: any.
std::string keyNameList();

}  // namespace orvel::phone
