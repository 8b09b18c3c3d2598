#include "base/UTF8.hpp"

#include <unicode/unistr.h>
#include <unicode/ustring.h>

#include <cstdint>
#include <limits>

namespace orvel {

bool isValidUTF8(std::string_view bytes) {
  if (bytes.size() > std::numeric_limits<std::int32_t>::max()) return false;
  // Measuring the UTF-16 form is the library's cheapest way to look at every byte.
  std::int32_t units = 0;
  UErrorCode error = U_ZERO_ERROR;
  u_strFromUTF8(nullptr, 0, &units, bytes.data(), static_cast<std::int32_t>(bytes.size()), &error);
  return error != U_INVALID_CHAR_FOUND;
}

std::u16string utf16(std::string_view text) {
  const auto converted = icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())});
  return {converted.getBuffer(), static_cast<std::size_t>(converted.length())};
}

std::string wellFormedUTF8(std::string_view bytes) {
  std::string text;
  icu::UnicodeString::fromUTF8({bytes.data(), static_cast<std::int32_t>(bytes.size())}).toUTF8String(text);
  return text;
}

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view blanks = " \t\n\r";
  const auto first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

}  // namespace orvel
