#pragma once

#include <functional>
#include <iosfwd>
#include <string>

namespace orvel {

struct HubState;

/// Says on a terminal what the hub says to its observers: whether phones can connect and control this computer,
/// and what keeps them from it.
/// Never says the pairing code, which a log might keep. Threads: the main thread.
class ConsoleStatus {
 public:
  /// `address` says where phones find this computer now, `obstacle` in a sentence why nothing that they send moves
  /// anything while that is so.
  ConsoleStatus(std::ostream& out, std::function<std::string()> address, std::function<std::string()> obstacle);

  /// Prints what differs between the state that was and the one to come.
  void show(const HubState& was, const HubState& next);

 private:
  std::ostream& out_;
  const std::function<std::string()> address_;
  const std::function<std::string()> obstacle_;
};

}  // namespace orvel
