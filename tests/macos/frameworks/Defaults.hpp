#pragma once

#include <map>
#include <string>
#include <variant>
#include <vector>

/// The user's defaults, in place of Foundation's.
namespace fake {

using DefaultsElement = std::variant<std::string, int>;
using DefaultsValue = std::variant<std::string, int, std::vector<DefaultsElement>>;

/// What is stored. Tests set it anew.
std::map<std::string, DefaultsValue>& defaults();

}  // namespace fake
