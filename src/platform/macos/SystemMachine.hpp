#pragma once

#include "session/Machine.hpp"

namespace orvel {

/// This Mac as its settings and its kernel describe it; asked anew each time, so a new name or network shows at once.
/// Threads: any.
class SystemMachine final : public Machine {
 public:
  std::optional<std::string> localizedName() const override;
  std::string hostName() const override;
  std::string kind() const override;
  std::vector<NetworkInterface> interfaces() const override;
};

}  // namespace orvel
