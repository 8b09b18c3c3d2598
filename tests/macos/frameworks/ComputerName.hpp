#pragma once

#include <optional>
#include <string>

namespace fake {

/// The name that the user gave the computer, in place of SystemConfiguration. Tests set it anew.
std::optional<std::string>& computerName();

}  // namespace fake
