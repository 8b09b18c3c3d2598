#pragma once

#include "platform/linux/keyboard/KeyPositions.hpp"

#include <bitset>
#include <cstdint>
#include <vector>

namespace orvel {

/// The way of the keys to the server, which all phones share. Threads: any.
class KeyQueue {
 public:
  struct Held {
    std::bitset<256> keys;      ///< Down by our doing, by X key code.
    std::uint64_t version = 0;  ///< Another one after each key that went this way.
  };

  virtual ~KeyQueue() = default;

  virtual Held held() = 0;

  /// Queues the changes with nothing in between. They leave all keys as they were. False, and nothing is queued, when
  /// other keys went this way since `version`.
  virtual bool queueInOneGo(const std::vector<KeyChange>& changes, std::uint64_t version) = 0;
};

}  // namespace orvel
