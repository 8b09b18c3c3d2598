#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace orvel {

/// Two lower-case hexadecimal digits for each byte, without separators.
std::string lowerHex(std::span<const std::uint8_t> bytes);

}  // namespace orvel
