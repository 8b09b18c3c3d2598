#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace orvel {

/// Whether `bytes` is well-formed UTF-8: no overlong forms, no surrogates, nothing beyond U+10FFFF.
bool isValidUTF8(std::string_view bytes);

/// The UTF-16 form of `text`, which is UTF-8; what is not well-formed becomes U+FFFD. Threads: any.
std::u16string utf16(std::string_view text);

/// `bytes` as UTF-8: what is not well-formed becomes U+FFFD. Threads: any.
std::string wellFormedUTF8(std::string_view bytes);

/// `text` without the blanks, tabs and line ends around it. Threads: any.
std::string_view trimmed(std::string_view text);

/// Splits `text`, which is UTF-8, into consecutive pieces of `count` characters as people see them (grapheme clusters);
/// the last may be shorter. An empty text has no pieces. The pieces are views of `text`. Threads: any.
std::vector<std::string_view> chunked(std::string_view text, std::size_t count);

}  // namespace orvel
