#pragma once

#include <netinet/tcp.h>

#include <map>
#include <optional>
#include <set>
#include <utility>

/// The options of sockets, in place of the kernel's.
namespace fake {

struct Sockets {
  using Option = std::pair<int, int>;  ///< Its level and its number.

  std::map<int, std::map<Option, int>> options;  ///< What was set, by socket.
  std::set<Option> refused;
  std::map<int, tcp_connection_info> connections;  ///< What the kernel reports of each.
};

/// Tests set it anew.
Sockets& sockets();

}  // namespace fake
