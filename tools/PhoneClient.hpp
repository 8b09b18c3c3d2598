#pragma once

#include "tools/Deadline.hpp"
#include "tools/HostMessage.hpp"
#include "tools/PhoneResult.hpp"

#include <boost/json/object.hpp>

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

namespace orvel::phone {

/// What the host says of itself when a phone connects.
struct Greeting {
  std::string mac;  ///< The computer's name.
  std::int64_t version = 0;
  std::string nonce;
};

/// What the host says to a phone that knows the token.
struct Welcome {
  std::string mac;
  bool accessibility = false;  ///< Whether the computer lets the host post input.
};

/// The answer to `nonce` that proves the knowledge of `token`: 64 lower-case hexadecimal digits.
std::string proofOf(std::string_view token, std::string_view nonce);

/// A phone's end of one connection. Every operation waits until it is done or its time is over, and says by its
/// result what went wrong. Messages of the host are read only while an operation waits for one.
///
/// Threads: one at a time.
class PhoneClient {
 public:
  /// Opens a connection to the host. `timeout` covers the search for the address and the WebSocket's opening; one
  /// address that does not answer uses it up.
  static Result<PhoneClient> connect(const std::string& host, std::uint16_t port, Seconds timeout);

  PhoneClient(PhoneClient&&) noexcept;
  PhoneClient& operator=(PhoneClient&&) noexcept;
  ~PhoneClient();

  /// The host's greeting, waited for if it has not come yet.
  Result<Greeting> greeting(Seconds timeout);

  /// Proves the knowledge of `token`, which is taken as it stands, and names the phone.
  Result<Welcome> pair(std::string_view token, std::string_view device, Seconds timeout);

  /// Sends one control message.
  Failure send(const boost::json::object& message);

  /// Sends one text message of any content.
  Failure sendText(std::string_view text);

  /// Sends one binary frame.
  Failure sendFrame(std::span<const std::uint8_t> frame);

  /// The next message of the host.
  Result<HostMessage> receive(Seconds timeout);

  /// The next control message of this kind. Whatever else comes before it is dropped.
  Result<boost::json::object> receive(std::string_view kind, Seconds timeout);

  /// Asks the host for a sign of life and returns how long it took. All that was sent before has been handled then.
  Result<Seconds> ping(Seconds timeout);

  /// Waits until the host has done what it does for this phone at leisure, beside the input that it carries out at
  /// once: typing, and starting and ending applications.
  Failure finishWork(Seconds timeout);

  /// Lets `duration` pass and drops what the host says meanwhile. Fails as soon as the connection ends.
  Failure idle(Seconds duration);

  /// Takes leave of the host and waits until the connection has ended.
  Failure close(Seconds timeout);

  /// Ends the connection at once and without a word: by a reset, the way of a system whose program has crashed.
  void reset();

  /// Ends the TCP connection in order but without the WebSocket's goodbye.
  void hangUp();

 private:
  class Connection;
  explicit PhoneClient(std::unique_ptr<Connection> connection);

  std::unique_ptr<Connection> connection_;
};

}  // namespace orvel::phone
