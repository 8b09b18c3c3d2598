#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orvel {

/// One WebSocket frame, right or wrong.
struct RawFrame {
  enum class LengthForm { shortest, inTwoBytes, inEightBytes };

  std::uint8_t opcode = 0;
  std::string payload = {};
  bool final = true;
  std::uint8_t reserved = 0;  ///< The three reserved bits: 4, 2 and 1.
  bool masked = true;
  LengthForm lengthForm = LengthForm::shortest;
  std::optional<std::uint64_t> declaredLength = {};  ///< In place of the payload's own.
};

namespace opcode {
inline constexpr std::uint8_t continuation = 0;
inline constexpr std::uint8_t text = 1;
inline constexpr std::uint8_t binary = 2;
inline constexpr std::uint8_t close = 8;
inline constexpr std::uint8_t ping = 9;
inline constexpr std::uint8_t pong = 10;
}  // namespace opcode

/// The frame as it goes over the network.
std::string bytesOf(const RawFrame& frame);

/// The payload of a close frame.
std::string closePayload(std::uint16_t code, std::string_view reason = "");

/// The code in the payload of a close frame, if it has one.
std::optional<std::uint16_t> closeCode(const RawFrame& frame);

/// A handshake as RFC 6455 shows it, with one of its lines left out or replaced, and lines added.
struct RawHandshake {
  std::string requestLine = "GET / HTTP/1.1";
  std::string upgrade = "Upgrade: websocket";
  std::string connection = "Connection: Upgrade";
  std::string key = "Sec-WebSocket-Key: dGhlIHNhbXBsZSBub25jZQ==";
  std::string version = "Sec-WebSocket-Version: 13";
  std::string more = {};  ///< Lines with their ends.
};

std::string bytesOf(const RawHandshake& handshake);

/// A client on loopback that sends what a test asks it to, and nothing by itself.
///
/// Threads: one at a time. Every wait has an end.
class RawWebSocket {
 public:
  using Limit = std::chrono::milliseconds;

  static constexpr Limit usualLimit = std::chrono::seconds(5);

  /// Connects to the port. `receiveBuffer`, when given, is how much the system takes in for a client that does not
  /// read.
  explicit RawWebSocket(std::uint16_t port, std::optional<int> receiveBuffer = std::nullopt);
  ~RawWebSocket();
  RawWebSocket(const RawWebSocket&) = delete;
  RawWebSocket& operator=(const RawWebSocket&) = delete;

  /// Does the handshake; true when the server agreed.
  bool open();

  /// Sends all of it; false when the server takes no more for the length of the limit, or the connection has ended.
  bool send(std::string_view bytes, Limit limit = usualLimit);
  bool send(const RawFrame& frame);

  /// The server's answer to a handshake, up to and with its empty line. Less when the connection ended before.
  std::string readHead();

  /// The next frame. Nothing when none comes, or the connection ended.
  std::optional<RawFrame> readFrame(Limit limit = usualLimit);

  /// Drops what comes until the server ends the connection, by whatever means; false when it does not.
  bool waitForEnd(Limit limit = usualLimit);

  /// Keeps its own side open and sends on until the server's system refuses: then its socket is gone.
  bool waitUntilSocketIsGone(Limit limit = usualLimit);

  /// Sends no more, in order; reading goes on.
  void finishSending();

  /// Closes the connection by a reset.
  void reset();

 private:
  using Moment = std::chrono::steady_clock::time_point;

  bool waitUntil(short events, Moment deadline) const;
  bool fill(std::size_t size, Moment deadline);
  bool readSome(Moment deadline);
  std::string take(std::size_t size);

  int socket_ = -1;
  std::string received_;
  bool ended_ = false;
};

}  // namespace orvel
