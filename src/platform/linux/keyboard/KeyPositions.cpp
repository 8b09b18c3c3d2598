#include "platform/linux/keyboard/KeyPositions.hpp"

#include <linux/input-event-codes.h>

#include <algorithm>
#include <array>

namespace orvel::KeyPositions {
namespace {

constexpr std::uint8_t none = KEY_RESERVED;
constexpr std::uint8_t firstKeyCode = 8;  // X numbers the kernel's keys from here

/// The kernel's key for each virtual key code, four to a line.
///
/// Help is where a PC has Insert, clear on the keypad where it has Num Lock, eisu and kana beside the space bar where a
/// Japanese one has Muhenkan and Henkan.
constexpr std::array<std::uint8_t, 0x80> keys = {
    KEY_A,          KEY_S,          KEY_D,          KEY_F,           // 0x00
    KEY_H,          KEY_G,          KEY_Z,          KEY_X,           // 0x04
    KEY_C,          KEY_V,          KEY_102ND,      KEY_B,           // 0x08
    KEY_Q,          KEY_W,          KEY_E,          KEY_R,           // 0x0c
    KEY_Y,          KEY_T,          KEY_1,          KEY_2,           // 0x10
    KEY_3,          KEY_4,          KEY_6,          KEY_5,           // 0x14
    KEY_EQUAL,      KEY_9,          KEY_7,          KEY_MINUS,       // 0x18
    KEY_8,          KEY_0,          KEY_RIGHTBRACE, KEY_O,           // 0x1c
    KEY_U,          KEY_LEFTBRACE,  KEY_I,          KEY_P,           // 0x20
    KEY_ENTER,      KEY_L,          KEY_J,          KEY_APOSTROPHE,  // 0x24
    KEY_K,          KEY_SEMICOLON,  KEY_BACKSLASH,  KEY_COMMA,       // 0x28
    KEY_SLASH,      KEY_N,          KEY_M,          KEY_DOT,         // 0x2c
    KEY_TAB,        KEY_SPACE,      KEY_GRAVE,      KEY_BACKSPACE,   // 0x30
    none,           KEY_ESC,        KEY_RIGHTMETA,  KEY_LEFTMETA,    // 0x34
    KEY_LEFTSHIFT,  KEY_CAPSLOCK,   KEY_LEFTALT,    KEY_LEFTCTRL,    // 0x38
    KEY_RIGHTSHIFT, KEY_RIGHTALT,   KEY_RIGHTCTRL,  none,            // 0x3c
    KEY_F17,        KEY_KPDOT,      none,           KEY_KPASTERISK,  // 0x40
    none,           KEY_KPPLUS,     none,           KEY_NUMLOCK,     // 0x44
    KEY_VOLUMEUP,   KEY_VOLUMEDOWN, KEY_MUTE,       KEY_KPSLASH,     // 0x48
    KEY_KPENTER,    none,           KEY_KPMINUS,    KEY_F18,         // 0x4c
    KEY_F19,        KEY_KPEQUAL,    KEY_KP0,        KEY_KP1,         // 0x50
    KEY_KP2,        KEY_KP3,        KEY_KP4,        KEY_KP5,         // 0x54
    KEY_KP6,        KEY_KP7,        KEY_F20,        KEY_KP8,         // 0x58
    KEY_KP9,        KEY_YEN,        KEY_RO,         KEY_KPJPCOMMA,   // 0x5c
    KEY_F5,         KEY_F6,         KEY_F7,         KEY_F3,          // 0x60
    KEY_F8,         KEY_F9,         KEY_MUHENKAN,   KEY_F11,         // 0x64
    KEY_HENKAN,     KEY_F13,        KEY_F16,        KEY_F14,         // 0x68
    none,           KEY_F10,        KEY_COMPOSE,    KEY_F12,         // 0x6c
    none,           KEY_F15,        KEY_INSERT,     KEY_HOME,        // 0x70
    KEY_PAGEUP,     KEY_DELETE,     KEY_F4,         KEY_END,         // 0x74
    KEY_F2,         KEY_PAGEDOWN,   KEY_F1,         KEY_LEFT,        // 0x78
    KEY_RIGHT,      KEY_DOWN,       KEY_UP,         none,            // 0x7c
};

/// Where a media key of a Mac is.
struct Place {
  std::int64_t keyType;
  std::uint8_t key;  // the kernel's
};

constexpr std::array places = {
    Place{0, KEY_VOLUMEUP},     Place{1, KEY_VOLUMEDOWN}, Place{2, KEY_BRIGHTNESSUP}, Place{3, KEY_BRIGHTNESSDOWN},
    Place{7, KEY_MUTE},         Place{16, KEY_PLAYPAUSE}, Place{17, KEY_NEXTSONG},    Place{18, KEY_PREVIOUSSONG},
    Place{19, KEY_FASTFORWARD}, Place{20, KEY_REWIND},
};

}  // namespace

std::optional<std::uint8_t> keyCodeOf(std::uint16_t virtualKeyCode) {
  if (virtualKeyCode >= keys.size() || keys[virtualKeyCode] == none) return std::nullopt;
  return static_cast<std::uint8_t>(keys[virtualKeyCode] + firstKeyCode);
}

std::optional<KeyChange> changeOf(const SystemDefinedEvent& event) {
  const auto place = std::ranges::find(places, event.data1 >> auxiliaryKey::typeShift, &Place::keyType);
  const std::int64_t state = event.data1 & auxiliaryKey::stateMask;
  const bool isKnown = state == auxiliaryKey::down || state == auxiliaryKey::up;
  if (event.subtype != auxiliaryKey::subtype || place == places.end() || !isKnown) return std::nullopt;
  return KeyChange{.keyCode = static_cast<std::uint8_t>(place->key + firstKeyCode),
                   .down = state == auxiliaryKey::down};
}

}  // namespace orvel::KeyPositions
