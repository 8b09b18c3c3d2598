#pragma once

#include <string>
#include <vector>

namespace orvel {

/// The titles of the windows that the window manager of a desktop looks after. Empty when there is none.
std::vector<std::string> windowTitles(const std::string& display);

}  // namespace orvel
