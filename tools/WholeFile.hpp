#pragma once

#include "tools/PhoneResult.hpp"

#include <filesystem>
#include <string_view>

/// Files that this program writes. Threads: any, one at a time for each place.
namespace orvel::phone {

/// Makes the folder if it is not there.
Failure makeFolder(const std::filesystem::path& path);

/// Writes a file as a whole or not at all; one that is there is replaced.
Failure writeWholeFile(const std::filesystem::path& path, std::string_view content);

}  // namespace orvel::phone
