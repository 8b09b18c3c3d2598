#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace orvel {

/// The content of a file. Nothing when it cannot be read, is larger than `limit` bytes, or is no plain file: opening a
/// pipe or a device could wait forever, or set something off. Threads: any.
std::optional<std::string> readSmallFile(const std::string& path, std::size_t limit);

/// The same for what `limit` bytes hold of a file that has no size of its own, as those of /proc.
std::string readBeginning(const std::string& path, std::size_t limit);

}  // namespace orvel
