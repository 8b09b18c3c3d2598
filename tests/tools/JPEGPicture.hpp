#pragma once

#include "tools/Scene.hpp"

#include <string>

namespace orvel::phone {

/// The picture as a JPEG in colour, with half the resolution for the colours, as hosts make them. Threads: any.
std::string jpegOf(const Picture& picture, int quality);

}  // namespace orvel::phone
