#pragma once

#include <string>
#include <vector>

namespace fake {

/// What the user prefers to read, first the most. Tests set it.
std::vector<std::string>& preferredLanguages();

}  // namespace fake
