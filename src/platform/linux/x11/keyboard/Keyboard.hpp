#pragma once

#include "platform/linux/x11/keyboard/KeyboardMap.hpp"

#include <bitset>
#include <cstdint>
#include <optional>

namespace orvel {

class X11Connection;

/// The keyboard as programs see it while XTEST types.
///
/// Threads: any. All wait for the server but `unlatch`, `unlock`, `lock`, `bind` and `unbind`.
class Keyboard {
 public:
  struct Reading {
    KeyboardMap map;
    std::uint8_t group = 0;
    KeyboardMap::Modifiers base = 0;  ///< By keys that are down.
    KeyboardMap::Modifiers locked = 0;
    bool isLatched = false;  ///< Modifiers or a group wait for the next key.
    std::bitset<256> downKeys;
    xcb_window_t focus = XCB_NONE;
  };

  explicit Keyboard(const X11Connection& connection);

  /// Nothing when the server has gone or has no XKB.
  std::optional<Reading> read() const;
  std::optional<KeyboardMap> readMap() const;

  /// Makes the next key what it would be anyway.
  void unlatch() const;

  /// Has modifiers not be locked, or locked again.
  void unlock(KeyboardMap::Modifiers modifiers) const { setLocked(modifiers, 0); }
  void lock(KeyboardMap::Modifiers modifiers) const { setLocked(modifiers, modifiers); }

  /// Gives a key two meanings, between which Shift and Caps Lock choose, on all groups; or none.
  void bind(const KeyboardMap& map, std::uint8_t keyCode, const KeyboardMap::Levels& levels) const;
  void unbind(const KeyboardMap& map, std::uint8_t keyCode) const;

 private:
  void setLocked(KeyboardMap::Modifiers affected, KeyboardMap::Modifiers locked) const;
  xcb_xkb_get_map_cookie_t askMap() const;
  std::optional<KeyboardMap> takeMap(xcb_xkb_get_map_cookie_t asked) const;
  void setMap(const KeyboardMap& map, std::uint8_t keyCode, const void* key, std::uint8_t symbols) const;

  const X11Connection& connection_;
  const bool isUsable_;
  const xcb_xkb_device_spec_t typingDevice_;  // the keyboard of XTEST, whose map programs get when it types
};

}  // namespace orvel
