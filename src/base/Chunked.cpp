#include "base/Chunked.hpp"

#include <unicode/brkiter.h>
#include <unicode/utext.h>

#include <cstdint>
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
