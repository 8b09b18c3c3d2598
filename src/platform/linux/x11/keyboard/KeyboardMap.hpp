#pragma once

#include "platform/linux/x11/X11Connection.hpp"

#include <xkbcommon/xkbcommon.h>

// The header names fields by a keyword of C++.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit

#include <array>
#include <cstdint>
#include <vector>

namespace orvel {

/// What the keys of a keyboard mean, as the server had it at one moment.
///
/// Threads: any, for it does not change.
class KeyboardMap {
 public:
  /// The parts of the map that `KeyboardMap` needs.
  static constexpr std::uint16_t neededParts = XCB_XKB_MAP_PART_KEY_TYPES | XCB_XKB_MAP_PART_KEY_SYMS |
                                               XCB_XKB_MAP_PART_MODIFIER_MAP | XCB_XKB_MAP_PART_KEY_ACTIONS;

  /// Keys up to here are written with, on one layout or another. Above come keys for sound, programs and the like.
  static constexpr std::uint8_t lastWritingKey = 135;

  /// What a key means at its two levels.
  using Levels = std::array<xkb_keysym_t, 2>;

  /// A set of modifiers, a bit each, as the server numbers them.
  using Modifiers = std::uint8_t;

  explicit KeyboardMap(XCBPointer<xcb_xkb_get_map_reply_t> reply);

  /// What programs take the key for while that group and these modifiers are in force.
  xkb_keysym_t keysym(std::uint8_t keyCode, std::uint8_t group, Modifiers modifiers) const;

  /// The modifiers that the key sets while it is down. None for other keys, and for those that latch or lock.
  Modifiers modifiersOf(std::uint8_t keyCode) const { return modifiers_[keyCode]; }

  /// Whether the key has no meaning, and is none of those that have one on other layouts: a second keyboard may have
  /// one of these.
  bool isSpare(std::uint8_t keyCode) const;

  /// Whether the key means nothing but `keysym`.
  bool meansOnly(std::uint8_t keyCode, xkb_keysym_t keysym) const;

  /// Whether the key has just these two levels.
  bool hasLevels(std::uint8_t keyCode, const Levels& levels) const;

  /// Whether all keys mean the same in the other map.
  bool isSameAs(const KeyboardMap& other) const;

  std::uint8_t firstKeyCode() const { return reply_->minKeyCode; }
  std::uint8_t lastKeyCode() const { return reply_->maxKeyCode; }

 private:
  struct Meaning {
    std::uint8_t level = 0;
    Modifiers consumed = 0;  // have done their work with the choice of the level
  };

  void readKeys(const xcb_xkb_get_map_map_t& parts);
  void readModifiers(const xcb_xkb_get_map_map_t& parts);
  static Meaning meaningOf(const xcb_xkb_key_type_t& type, Modifiers modifiers);

  XCBPointer<xcb_xkb_get_map_reply_t> reply_;
  std::vector<const xcb_xkb_key_type_t*> types_;             // in the reply
  std::array<const xcb_xkb_key_sym_map_t*, 256> symbols_{};  // in the reply; by key code, null where there is no key
  std::array<Modifiers, 256> modifiers_{};                   // by key code
  std::array<bool, 256> isModifier_{};                       // by key code
};

}  // namespace orvel
