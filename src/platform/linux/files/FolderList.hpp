#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace orvel {

/// The value of a variable of the environment; empty where it is not set.
std::string environmentVariable(const char* name);

/// Adds the folders of a list such as "/one:/two", each once. Relative ones mean nothing, as they would depend on where
/// this program was started, and are left out. Threads: as any value.
void addFolders(std::vector<std::string>& folders, std::string_view list);

}  // namespace orvel
