#include "base/UTF8.hpp"

#include <unicode/brkiter.h>
#include <unicode/unistr.h>
#include <unicode/ustring.h>
#include <unicode/utext.h>

#include <cstdint>
#include <limits>
#include <memory>

namespace orvel {
namespace {

struct CloseText {
  void operator()(UText* text) const noexcept { utext_close(text); }
};

/// The boundaries between the characters of a text, as the user's eye sees them.
std::unique_ptr<icu::BreakIterator> boundariesOf(UText& text) {
  UErrorCode error = U_ZERO_ERROR;
  std::unique_ptr<icu::BreakIterator> boundaries(
      icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), error));
  if (U_SUCCESS(error)) boundaries->setText(&text, error);
  return U_SUCCESS(error) ? std::move(boundaries) : nullptr;
}

}  // namespace

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

std::vector<std::string_view> chunked(std::string_view text, std::size_t count) {
  std::vector<std::string_view> pieces;
  UErrorCode error = U_ZERO_ERROR;
  const std::unique_ptr<UText, CloseText> opened(
      utext_openUTF8(nullptr, text.data(), static_cast<std::int64_t>(text.size()), &error));
  const auto boundaries = opened ? boundariesOf(*opened) : nullptr;
  // Without the library's tables the text still arrives, in one piece.
  if (!boundaries) return text.empty() ? pieces : std::vector{text};

  std::size_t start = 0;
  while (start < text.size()) {
    std::int32_t end = boundaries->next(static_cast<std::int32_t>(count));
    if (end == icu::BreakIterator::DONE) end = static_cast<std::int32_t>(text.size());
    pieces.push_back(text.substr(start, static_cast<std::size_t>(end) - start));
    start = static_cast<std::size_t>(end);
  }
  return pieces;
}

}  // namespace orvel
