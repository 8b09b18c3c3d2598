#pragma once

#include <cstdint>
#include <string>

namespace orvel {

/// Announces a service on the local network by Bonjour. Announcing is a courtesy: where it cannot be done, nothing
/// else suffers, and it is taken up by itself as soon as it can. Threads: any.
class Advertiser {
 public:
  virtual ~Advertiser() = default;

  /// Announces `type` (such as "_orvel._tcp") on `port` under `name`, in place of what was announced before.
  virtual void advertise(const std::string& name, const std::string& type, std::uint16_t port) = 0;

  /// Takes the announcement back.
  virtual void withdraw() = 0;
};

}  // namespace orvel
