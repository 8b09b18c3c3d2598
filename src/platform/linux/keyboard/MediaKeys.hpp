#pragma once

#include "input/InputEvent.hpp"
#include "platform/linux/x11/keyboard/KeyQueue.hpp"

#include <optional>

namespace orvel {

/// Where the keys for sound, brightness and playback are on the keyboard. Stateless. Threads: any.
namespace MediaKeys {

/// The change of the key that an event is about. Nothing for events of other kinds, other keys, and other changes than
/// down and up.
std::optional<KeyChange> changeOf(const SystemDefinedEvent& event);

}  // namespace MediaKeys
}  // namespace orvel
