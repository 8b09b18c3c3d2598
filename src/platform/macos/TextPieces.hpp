#pragma once

#include <string>
#include <vector>

namespace orvel {

/// Splits `text` into consecutive pieces that keyboard events can carry, 20 UTF-16 units each. A character as people
/// see it is split only when it alone is longer, and a surrogate pair never. No pieces for a text that is empty or not
/// well-formed. Threads: any.
std::vector<std::u16string> textPieces(const std::u16string& text);

}  // namespace orvel
