#pragma once

#include "base/Guarded.hpp"

#include <dns_sd.h>

#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <vector>

/// The daemon for Bonjour and the library that leads to it.
namespace fake {

/// What was asked for, as it was asked for.
struct BonjourRequest {
  DNSServiceFlags flags = 0;
  std::uint32_t interfaceIndex = 0;
  std::string name;
  std::string type;
  bool hasDomainOrHost = false;
  std::uint16_t port = 0;
  bool hasText = false;
};

/// Threads: any.
class Bonjour {
 public:
  struct State {
    std::vector<BonjourRequest> requests;
    std::deque<DNSServiceErrorType> refusals;  ///< Of the next ones; the last one stays.
    std::function<void()> delay;               ///< Takes place while a request is made.
    std::vector<DNSServiceRef> living;
    int socketQueries = 0;    ///< How often the library was asked for its socket.
    int wrongThreadUses = 0;  ///< Uses on another thread than the one that made it.
  };

  /// A copy of how things are.
  State state();

  void change(const std::function<void(State&)>& how);

  /// Has the daemon answer the only request that lives.
  void answer(DNSServiceErrorType error);

  /// Has the daemon go.
  void die();

 private:
  orvel::Guarded<State> state_;
};

/// One for all tests, which set its state anew.
Bonjour& bonjour();

}  // namespace fake
