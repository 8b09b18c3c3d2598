#pragma once

#include <string>
#include <string_view>

namespace orvel::phone {

/// What others have written, in a form that fits a line of a terminal and cannot steer it: control characters, line
/// breaks and reversals of the writing direction become U+FFFD. Threads: any.
std::string plainText(std::string_view text);

}  // namespace orvel::phone
