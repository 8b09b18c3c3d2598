#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace orvel {

/// Splits `text`, which is UTF-8, into consecutive pieces of `count` characters as people see them (grapheme clusters);
/// the last may be shorter. An empty text has no pieces. The pieces are views of `text`. Threads: any.
std::vector<std::string_view> chunked(std::string_view text, std::size_t count);

}  // namespace orvel
