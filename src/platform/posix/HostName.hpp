#pragma once

#include <string>

namespace orvel::HostName {

/// The name of this computer on the network as its kernel knows it, in UTF-8. Empty when it has none. Threads: any.
std::string read();

}  // namespace orvel::HostName
