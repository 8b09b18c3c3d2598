#pragma once

#include <string_view>

namespace orvel {

/// Whether `bytes` is well-formed UTF-8: no overlong forms, no surrogates, nothing beyond U+10FFFF.
bool isValidUTF8(std::string_view bytes);

}  // namespace orvel
