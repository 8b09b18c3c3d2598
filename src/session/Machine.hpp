#pragma once

#include <optional>
#include <string>
#include <vector>

namespace orvel {

/// One IPv4 address of a network interface.
struct NetworkInterface {
  std::string name;
  std::string address;  ///< Dotted quad.
  bool isUp = false;
  bool isLoopback = false;
};

/// What the computer says of itself. Texts are valid UTF-8. Threads: any.
class Machine {
 public:
  virtual ~Machine() = default;

  /// The name that its user gave the computer, if any.
  virtual std::optional<std::string> localizedName() const = 0;

  /// Its name on the network.
  virtual std::string hostName() const = 0;

  /// What its users call a computer of its kind, as in "this Mac".
  virtual std::string kind() const = 0;

  /// The IPv4 addresses in the system's order; empty when they cannot be listed.
  virtual std::vector<NetworkInterface> interfaces() const = 0;
};

/// The name to show for this computer: the localized one, else the host name. Never empty.
std::string displayName(const Machine& machine);

namespace NetworkInfo {

/// The dotted-quad IPv4 address under which phones on the local network reach this computer, or nothing when it is
/// on no network. Threads: any.
std::optional<std::string> localAddress(const Machine& machine);

}  // namespace NetworkInfo

}  // namespace orvel
