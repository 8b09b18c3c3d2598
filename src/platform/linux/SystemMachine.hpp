#pragma once

#include "session/Machine.hpp"

#include <string>
#include <vector>

namespace orvel {

/// This computer as its kernel and its settings describe it; asked anew each time, so a new name or network shows at
/// once.
///
/// Threads: any.
class SystemMachine final : public Machine {
 public:
  /// `machineInfo` is the file in which the system keeps the name that the user gave the computer.
  explicit SystemMachine(std::string machineInfo = "/etc/machine-info");

  std::optional<std::string> localizedName() const override;
  std::string hostName() const override;
  std::string kind() const override;
  std::vector<NetworkInterface> interfaces() const override;

 private:
  const std::string machineInfo_;
};

}  // namespace orvel
