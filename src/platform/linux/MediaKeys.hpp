#pragma once

#include "input/InputEvent.hpp"

#include <cstdint>
#include <optional>

namespace orvel {

/// Where the keys for sound, brightness and playback are on the keyboard. Stateless. Threads: any.
namespace MediaKeys {

/// What becomes of one key.
struct Change {
  std::uint8_t keyCode = 0;  ///< X key code.
  bool down = false;

  friend bool operator==(const Change&, const Change&) = default;
};

/// Nothing for events of other kinds, other keys, and other changes than down and up.
std::optional<Change> changeOf(const SystemDefinedEvent& event);

}  // namespace MediaKeys
}  // namespace orvel
