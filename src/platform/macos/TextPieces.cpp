#include "platform/macos/TextPieces.hpp"

#include "base/UTF8.hpp"
#include "platform/macos/NativeText.hpp"

#include <cstddef>
#include <string_view>

namespace orvel {
namespace {

// The system silently drops what a keyboard event has beyond that.
constexpr std::size_t unitsInEvent = 20;

bool isHighSurrogate(char16_t unit) {
  return unit >= 0xd800 && unit < 0xdc00;
}

void append(std::u16string_view character, std::vector<std::u16string>& pieces) {
  if (pieces.empty() || pieces.back().size() + character.size() > unitsInEvent) pieces.emplace_back();
  while (character.size() > unitsInEvent) {
    const std::size_t size = isHighSurrogate(character[unitsInEvent - 1]) ? unitsInEvent - 1 : unitsInEvent;
    pieces.back() = character.substr(0, size);
    pieces.emplace_back();
    character.remove_prefix(size);
  }
  pieces.back() += character;
}

std::string utf8(const std::u16string& text) {
  const CFPointer<CFStringRef> units(CFStringCreateWithCharacters(
      nullptr, reinterpret_cast<const UniChar*>(text.data()), static_cast<CFIndex>(text.size())));
  return NativeText::fromCF(units.get());
}

}  // namespace

std::vector<std::u16string> textPieces(const std::u16string& text) {
  std::vector<std::u16string> pieces;
  const std::string bytes = utf8(text);
  for (const std::string_view character : chunked(bytes, 1)) append(utf16(character), pieces);
  return pieces;
}

}  // namespace orvel
