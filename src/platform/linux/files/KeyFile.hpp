#pragma once

#include "platform/linux/GLibPointer.hpp"

#include <string>

namespace orvel {

/// The groups, keys and values of a text in the form that desktop entries have. Null when it is damaged. Threads: any.
GLibPointer<GKeyFile> parseKeyFile(const std::string& text);

}  // namespace orvel
