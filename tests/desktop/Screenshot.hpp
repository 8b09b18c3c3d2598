#pragma once

#include <string>

namespace orvel {

/// Writes what a desktop shows at this moment to a PNG file. False when it cannot.
bool writeScreenshot(const std::string& display, const std::string& path);

}  // namespace orvel
