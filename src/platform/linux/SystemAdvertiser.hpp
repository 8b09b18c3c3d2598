#pragma once

#include "base/Guarded.hpp"
#include "platform/LeavableThread.hpp"
#include "session/Advertiser.hpp"

#include <memory>
#include <string>

namespace orvel {

/// Announces through the machine's Avahi daemon, whenever there is one: it may start late, restart or go, and so may
/// the system bus that leads to it. While nothing changes nothing runs.
///
/// Threads: any. The work is done on a thread of its own, which starts with the first announcement.
class SystemAdvertiser final : public Advertiser {
 public:
  SystemAdvertiser();

  /// Takes the announcement back. Does not wait for a system bus that hangs.
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
