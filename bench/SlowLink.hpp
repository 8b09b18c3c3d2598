#pragma once

#include "desktop/Descriptor.hpp"

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <thread>

namespace orvel::bench {

/// A slow link between this program's network and another one, made of a pair of virtual interfaces and of two threads
/// that carry each packet over in its time. The near end is 10.87.0.1, the far one 10.87.0.2. What goes wrong is
/// thrown.
///
/// Threads: one at a time.
class SlowLink {
 public:
  struct Pace {
    double bytesPerSecond = 0;
    std::chrono::duration<double> delay{0};  ///< One way.
    std::size_t mostQueuedBytes = 0;         ///< What comes when more wait is dropped.
  };

  static constexpr const char* nearAddress = "10.87.0.1";

  /// This program must be in a network of its own already.
  explicit SlowLink(const Pace& pace);
  ~SlowLink();
  SlowLink(const SlowLink&) = delete;
  SlowLink& operator=(const SlowLink&) = delete;

  /// Runs `body` on a thread whose sockets are in the far network, to its end. What it throws comes out here.
  void onFarSide(const std::function<void()>& body);

 private:
  Descriptor near_;
  Descriptor far_;
  Descriptor farNetwork_;
  std::jthread there_;
  std::jthread back_;
};

}  // namespace orvel::bench
