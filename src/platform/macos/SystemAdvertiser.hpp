#pragma once

#include "base/Guarded.hpp"
#include "platform/LeavableThread.hpp"
#include "session/Advertiser.hpp"

#include <memory>
#include <string>

namespace orvel {

/// Announces through the system's daemon for Bonjour. When that restarts, or refuses because the user does not let the
/// program onto the local network yet, it is asked again, more and more rarely. While nothing changes nothing runs.
///
/// Threads: any. The work is done on a thread of its own, which starts with the first announcement.
class SystemAdvertiser final : public Advertiser {
 public:
  SystemAdvertiser();

  /// Takes the announcement back. Does not wait for a daemon that hangs.
  ~SystemAdvertiser() override;
  SystemAdvertiser(const SystemAdvertiser&) = delete;
  SystemAdvertiser& operator=(const SystemAdvertiser&) = delete;

  void advertise(const std::string& name, const std::string& type, std::uint16_t port) override;
  void withdraw() override;

 private:
  class Orders;
  class Announcer;

  const std::shared_ptr<Orders> orders_;
  Guarded<LeavableThread> thread_;
};

}  // namespace orvel
