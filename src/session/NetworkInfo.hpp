#pragma once

#include <optional>
#include <string>

namespace orvel {

class Machine;

namespace NetworkInfo {

/// The dotted-quad IPv4 address under which phones on the local network reach this computer, or nothing when it is
/// on no network. Threads: any.
std::optional<std::string> localAddress(const Machine& machine);

}  // namespace NetworkInfo
}  // namespace orvel
