#pragma once

#include <optional>
#include <string_view>

namespace orvel::phone {

/// The number that the whole of `text` says, always with a point for its fraction. Not yet every C++ library has this.
/// Threads: any.
std::optional<double> decimalNumber(std::string_view text);

}  // namespace orvel::phone
