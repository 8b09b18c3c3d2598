#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace orvel::phone {

/// The number of the media key that a word such as "volume-up" or "16" names. A number need not be one that hosts know.
/// Threads: any.
std::optional<std::uint8_t> mediaKey(std::string_view word);

}  // namespace orvel::phone
