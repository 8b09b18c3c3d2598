#include "platform/linux/keyboard/MediaKeys.hpp"

#include <linux/input-event-codes.h>

#include <algorithm>
#include <array>
#include <cstdint>

namespace orvel::MediaKeys {
namespace {

constexpr std::uint8_t firstKeyCode = 8;  // X numbers the kernel's keys from here

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

std::optional<KeyChange> changeOf(const SystemDefinedEvent& event) {
  const auto place = std::ranges::find(places, event.data1 >> auxiliaryKey::typeShift, &Place::keyType);
  const std::int64_t state = event.data1 & auxiliaryKey::stateMask;
  const bool isKnown = state == auxiliaryKey::down || state == auxiliaryKey::up;
  if (event.subtype != auxiliaryKey::subtype || place == places.end() || !isKnown) return std::nullopt;
  return KeyChange{.keyCode = static_cast<std::uint8_t>(place->key + firstKeyCode),
                   .down = state == auxiliaryKey::down};
}

}  // namespace orvel::MediaKeys
