#pragma once

#include "platform/macos/bonjour/BonjourService.hpp"

#include <dns_sd.h>

namespace orvel {

/// A service that the system's daemon was asked to announce, for as long as this lives. The daemon takes another name
/// when that one is taken.
///
/// Threads: one. Making it may take as long as the daemon does.
class BonjourRegistration {
 public:
  explicit BonjourRegistration(const BonjourService& service);
  ~BonjourRegistration();
  BonjourRegistration(const BonjourRegistration&) = delete;
  BonjourRegistration& operator=(const BonjourRegistration&) = delete;

  /// Why it is not announced, and never will be by this registration; kDNSServiceErr_NoError otherwise.
  DNSServiceErrorType error() const { return error_; }

  /// Whether the daemon has said that the service is announced.
  bool isConfirmed() const { return isConfirmed_; }

  /// Can be read once the daemon has something to say, to which `process` then listens.
  int descriptor() const;
  void process();

 private:
  void answered(DNSServiceErrorType error);

  DNSServiceRef reference_ = nullptr;
  DNSServiceErrorType error_ = kDNSServiceErr_NoError;
  bool isConfirmed_ = false;
};

}  // namespace orvel
