#pragma once

#include "tools/PhoneResult.hpp"

#include <cstddef>
#include <istream>
#include <string>
#include <string_view>
#include <vector>

/// Text on its way to the computer's keyboard. Threads: any.
namespace orvel::phone {

/// The most that is taken from a stream, in bytes: some minutes of typing.
inline constexpr std::size_t longestTypedText = 1024 * 1024;

/// All that the stream holds. It must be UTF-8, and no longer than `longestTypedText`.
Result<std::string> readTypedText(std::istream& in);

/// `text`, which is UTF-8, in consecutive parts that each fit a text frame. A character as people see it stays whole,
/// unless it alone is longer than a frame; none of Unicode is ever split. An empty text has no parts. The parts are
/// views of `text`.
std::vector<std::string_view> frameParts(std::string_view text);

}  // namespace orvel::phone
