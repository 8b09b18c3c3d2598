#include "base/Hex.hpp"

namespace orvel {

std::string lowerHex(std::span<const std::uint8_t> bytes) {
  constexpr char digits[] = "0123456789abcdef";
  std::string text;
  text.reserve(bytes.size() * 2);
  for (const std::uint8_t byte : bytes) {
    text += digits[byte >> 4];
    text += digits[byte & 0x0f];
  }
  return text;
}

}  // namespace orvel
