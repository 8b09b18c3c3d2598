#pragma once

#include "session/Machine.hpp"

#include <vector>

namespace orvel::NetworkInterfaces {

/// The IPv4 addresses of this computer in the kernel's order; empty when they cannot be listed. Threads: any.
std::vector<NetworkInterface> list();

}  // namespace orvel::NetworkInterfaces
