#include "tools/PlainText.hpp"

#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <cstdint>

namespace orvel::phone {
namespace {

constexpr char16_t replacement = 0xfffd;

bool steersTerminal(UChar32 character) {
  const auto type = u_charType(character);
  return type == U_CONTROL_CHAR || type == U_LINE_SEPARATOR || type == U_PARAGRAPH_SEPARATOR ||
         u_hasBinaryProperty(character, UCHAR_BIDI_CONTROL);
}

}  // namespace

std::string plainText(std::string_view text) {
  auto characters = icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())});
  // What steers is one unit long; half of a longer character never does.
  for (std::int32_t place = 0; place < characters.length(); ++place) {
    if (steersTerminal(characters.charAt(place))) characters.setCharAt(place, replacement);
  }
  std::string plain;
  return characters.toUTF8String(plain);
}

}  // namespace orvel::phone
