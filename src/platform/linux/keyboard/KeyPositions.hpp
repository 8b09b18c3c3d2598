#pragma once

#include <cstdint>
#include <optional>

namespace orvel {

/// Where the keys of a Mac keyboard are on this one. Stateless. Threads: any.
namespace KeyPositions {

/// The X key code of the key at the place where a Mac has the key of that virtual key code, whatever the layout has
/// there. Nothing for keys that only a Mac has, and for codes that no key has.
std::optional<std::uint8_t> keyCodeOf(std::uint16_t virtualKeyCode);

}  // namespace KeyPositions
}  // namespace orvel
