#pragma once

#include "tools/MirrorSession.hpp"
#include "tools/PhoneClient.hpp"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace orvel::bench {

/// A paired phone that watches the screen. What goes wrong is thrown.
///
/// Threads: one at a time.
class MirrorPhone {
 public:
  /// Connects to a port of this computer and pairs.
  MirrorPhone(std::uint16_t port, std::string_view token);

  /// Asks for the screen, and returns how large its pictures are.
  phone::MirrorSize start(const phone::MirrorWish& wish);

  /// Waits for the next frame.
  phone::MirrorFrame next();

  /// Lets the time pass and returns how many frames came meanwhile.
  std::size_t countFor(std::chrono::duration<double> time);

  void stop();

 private:
  phone::PhoneClient client_;
  phone::MirrorSession mirror_{client_};
};

}  // namespace orvel::bench
