#pragma once

#include "desktop/Descriptor.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace orvel::bench {

/// A phone's end of one connection, made of bare system calls, so that it adds next to nothing to what is measured.
/// What goes wrong is thrown.
///
/// Threads: one at a time.
class RawPhone {
 public:
  /// Connects to a port of this computer and opens the WebSocket.
  explicit RawPhone(std::uint16_t port);

  /// Whether anybody listens on a port of this computer.
  static bool isAnswered(std::uint16_t port);

  /// Waits for the host's greeting, proves the knowledge of `token` and waits for the welcome.
  void pair(std::string_view token, std::string_view device);

  /// Sends one binary input frame of at most 125 bytes by one system call.
  void sendFrame(std::span<const std::uint8_t> frame);

 private:
  static constexpr std::size_t longestShortPayload = 125;

  void openWebSocket();
  std::string receiveText();
  void sendText(std::string_view text);
  void sendMasked(std::uint8_t opcode, std::span<const std::uint8_t> payload);
  void receiveExactly(std::span<char> target);

  Descriptor socket_;
  std::uint32_t randomness_ = 1;
};

}  // namespace orvel::bench
