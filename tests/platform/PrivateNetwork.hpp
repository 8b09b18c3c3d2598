#pragma once

#include <optional>
#include <string>

namespace orvel {

/// Moves the calling thread, and what it starts from now on, into a network that holds a loopback interface alone and
/// to an empty /run. Says why when that is not permitted.
std::optional<std::string> enterPrivateNetwork();

}  // namespace orvel
