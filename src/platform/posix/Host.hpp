#pragma once

#include "session/Machine.hpp"

#include <string>
#include <vector>

/// This computer on the network as its kernel knows it. Threads: any.
namespace orvel::Host {

/// Its name in UTF-8; empty when it has none.
std::string name();

/// Its IPv4 addresses in the kernel's order; empty when they cannot be listed.
std::vector<NetworkInterface> interfaces();

}  // namespace orvel::Host
