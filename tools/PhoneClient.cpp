#include "tools/PhoneClient.hpp"

#include <boost/asio/connect.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/beast/core/buffers_to_string.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/websocket.hpp>
#include <boost/json/array.hpp>
#include <boost/json/serialize.hpp>
#include <sodium.h>

#include <array>
#include <cstddef>
#include <functional>
#include <utility>

namespace orvel::phone {
namespace {

namespace asio = boost::asio;
namespace websocket = boost::beast::websocket;
using boost::system::error_code;
using tcp = asio::ip::tcp;

constexpr Seconds sendLimit{10};
constexpr std::size_t longestMessage = 8 * 1024 * 1024;

Error timedOut(std::string_view what) {
  return {Error::Kind::timedOut, std::string(what) + " did not come in time"};
}

Error ended(const error_code& code) {
  if (code == websocket::error::closed || code == asio::error::eof) {
    return {Error::Kind::ended, "the host closed the connection"};
  }
  return {Error::Kind::ended, "the connection was lost: " + code.message()};
}

Result<Greeting> greetingFrom(const boost::json::object& message) {
  const auto* mac = stringIn(message, "mac");
  const auto* nonce = stringIn(message, "nonce");
  const auto* number = message.if_contains("version");
  const auto* version = number ? number->if_int64() : nullptr;
  if (!mac || !nonce || !version) return Error{Error::Kind::unexpected, "the host's greeting is not complete"};
  return Greeting{std::string(*mac), *version, std::string(*nonce)};
}

Result<Welcome> welcomeFrom(const boost::json::object& message) {
  const auto* mac = stringIn(message, "mac");
  const auto* value = message.if_contains("accessibility");
  const auto* accessibility = value ? value->if_bool() : nullptr;
  if (!mac || !accessibility) return Error{Error::Kind::unexpected, "the host's answer is not complete"};
  return Welcome{std::string(*mac), *accessibility};
}

}  // namespace

std::string proofOf(std::string_view token, std::string_view nonce) {
  std::array<unsigned char, crypto_auth_hmacsha256_BYTES> code{};
  crypto_auth_hmacsha256_state state;
  crypto_auth_hmacsha256_init(&state, reinterpret_cast<const unsigned char*>(token.data()), token.size());
  crypto_auth_hmacsha256_update(&state, reinterpret_cast<const unsigned char*>(nonce.data()), nonce.size());
  crypto_auth_hmacsha256_final(&state, code.data());
  std::array<char, code.size() * 2 + 1> text{};
  sodium_bin2hex(text.data(), text.size(), code.data(), code.size());
  return text.data();
}

/// The socket and the loop that turns it, only while an operation waits.
///
/// Threads: one at a time.
class PhoneClient::Connection {
 public:
  Failure open(const std::string& host, std::uint16_t port, Seconds timeout);
  Failure send(bool isText, const void* data, std::size_t size);
  Result<HostMessage> receive(Seconds timeout);
  Failure close(Seconds timeout);
  void reset();
  void hangUp();

  std::optional<boost::json::object> greeting;

 private:
  using Operation = std::function<void(std::function<void(const error_code&)> done)>;

  std::optional<error_code> await(const Operation& start, Seconds timeout);
  template <class IsDone>
  bool turnUntil(IsDone isDone, Moment deadline);
  void read();
  void drop();

  asio::io_context context_{1};
  websocket::stream<tcp::socket> stream_{context_};
  boost::beast::flat_buffer buffer_;
  bool reading_ = false;
  std::optional<HostMessage> arrived_;
  std::optional<error_code> ended_;
};

template <class IsDone>
bool PhoneClient::Connection::turnUntil(IsDone isDone, Moment deadline) {
  context_.restart();
  while (!isDone() && context_.run_one_until(deadline) != 0) {
  }
  return isDone();
}

/// The outcome of an operation; nothing when it took too long, which costs the connection.
std::optional<error_code> PhoneClient::Connection::await(const Operation& start, Seconds timeout) {
  std::optional<error_code> outcome;
  start([&](const error_code& code) { outcome = code; });
  if (turnUntil([&] { return outcome.has_value(); }, after(timeout))) return outcome;
  drop();
  turnUntil([&] { return outcome.has_value(); }, Moment::max());
  return std::nullopt;
}

Failure PhoneClient::Connection::open(const std::string& host, std::uint16_t port, Seconds timeout) {
  const Moment deadline = after(timeout);
  const std::string place = host + " port " + std::to_string(port);
  const auto unreachable = [&](const std::optional<error_code>& code) {
    return Error{Error::Kind::unreachable,
                 "could not connect to " + place + ": " + (code ? code->message() : "no answer in time")};
  };
  tcp::resolver resolver(context_);
  tcp::resolver::results_type addresses;
  auto outcome = await(
      [&](auto done) {
        resolver.async_resolve(host, std::to_string(port), [&, done](const error_code& code, auto found) {
          addresses = std::move(found);
          done(code);
        });
      },
      timeout);
  if (!outcome || *outcome) return unreachable(outcome);
  auto& socket = stream_.next_layer();
  outcome = await(
      [&](auto done) {
        asio::async_connect(socket, addresses, [done](const error_code& code, const auto&) { done(code); });
      },
      until(deadline));
  if (!outcome || *outcome) return unreachable(outcome);
  error_code ignored;
  socket.set_option(tcp::no_delay(true), ignored);
  stream_.auto_fragment(false);
  stream_.read_message_max(longestMessage);
  const std::string authority = (host.find(':') == std::string::npos ? host : "[" + host + "]");
  outcome = await([&](auto done) { stream_.async_handshake(authority + ":" + std::to_string(port), "/", done); },
                  until(deadline));
  if (!outcome || *outcome) return unreachable(outcome);
  return std::nullopt;
}

Failure PhoneClient::Connection::send(bool isText, const void* data, std::size_t size) {
  if (ended_) return ended(*ended_);
  stream_.text(isText);
  const auto outcome = await(
      [&](auto done) {
        stream_.async_write(asio::buffer(data, size), [done](const error_code& code, std::size_t) { done(code); });
      },
      sendLimit);
  if (!outcome) return Error{Error::Kind::ended, "the host does not take what is sent"};
  if (*outcome) return ended(ended_.value_or(*outcome));
  return std::nullopt;
}

void PhoneClient::Connection::read() {
  reading_ = true;
  stream_.async_read(buffer_, [this](const error_code& code, std::size_t) {
    reading_ = false;
    if (code) {
      ended_ = code;
      return;
    }
    const Arrival now{std::chrono::steady_clock::now(), std::chrono::system_clock::now()};
    arrived_ = HostMessage{stream_.got_text(), boost::beast::buffers_to_string(buffer_.data()), now};
    buffer_.consume(buffer_.size());
  });
}

Result<HostMessage> PhoneClient::Connection::receive(Seconds timeout) {
  if (!reading_ && !arrived_ && !ended_) read();
  turnUntil([this] { return arrived_ || ended_; }, after(timeout));
  if (arrived_) {
    HostMessage message = *std::exchange(arrived_, std::nullopt);
    if (!greeting) {
      if (auto control = controlIn(message); isKind(control, "hello")) greeting = std::move(control);
    }
    return message;
  }
  if (ended_) return ended(*ended_);
  return timedOut("a message");
}

Failure PhoneClient::Connection::close(Seconds timeout) {
  if (ended_ && *ended_ == websocket::error::closed) return std::nullopt;
  if (ended_) return ended(*ended_);
  const auto outcome = await([&](auto done) { stream_.async_close(websocket::close_code::normal, done); }, timeout);
  const auto before = std::exchange(ended_, error_code(websocket::error::closed));
  if (!outcome) return timedOut("the host's goodbye");
  if (*outcome && *outcome != websocket::error::closed) return ended(before.value_or(*outcome));
  return std::nullopt;
}

void PhoneClient::Connection::reset() {
  error_code ignored;
  stream_.next_layer().set_option(asio::socket_base::linger(true, 0), ignored);
  drop();
}

void PhoneClient::Connection::hangUp() {
  drop();
}

void PhoneClient::Connection::drop() {
  error_code ignored;
  stream_.next_layer().close(ignored);
  if (!ended_) ended_ = asio::error::operation_aborted;
}

PhoneClient::PhoneClient(std::unique_ptr<Connection> connection) : connection_(std::move(connection)) {}
PhoneClient::PhoneClient(PhoneClient&&) noexcept = default;
PhoneClient& PhoneClient::operator=(PhoneClient&&) noexcept = default;
PhoneClient::~PhoneClient() = default;

Result<PhoneClient> PhoneClient::connect(const std::string& host, std::uint16_t port, Seconds timeout) {
  auto connection = std::make_unique<Connection>();
  if (auto failure = connection->open(host, port, timeout)) return *std::move(failure);
  return PhoneClient(std::move(connection));
}

Result<Greeting> PhoneClient::greeting(Seconds timeout) {
  if (!connection_->greeting) {
    if (auto hello = receive("hello", timeout); !hello) return hello.error();
  }
  return greetingFrom(*connection_->greeting);
}

Result<Welcome> PhoneClient::pair(std::string_view token, std::string_view device, Seconds timeout) {
  const Moment deadline = after(timeout);
  const auto hello = greeting(timeout);
  if (!hello) return hello.error();
  if (auto failure = send({{"t", "auth"}, {"proof", proofOf(token, hello->nonce)}, {"device", device}})) {
    return *std::move(failure);
  }
  while (true) {
    const auto message = receive(until(deadline));
    if (!message) return message.error();
    const auto answer = controlIn(*message);
    if (isKind(answer, "ready")) return welcomeFrom(*answer);
    if (!isKind(answer, "denied")) continue;
    return Error{Error::Kind::denied, reasonIn(*answer)};
  }
}

Failure PhoneClient::send(const boost::json::object& message) {
  return sendText(boost::json::serialize(message));
}

Failure PhoneClient::sendText(std::string_view text) {
  return connection_->send(true, text.data(), text.size());
}

Failure PhoneClient::sendFrame(std::span<const std::uint8_t> frame) {
  return connection_->send(false, frame.data(), frame.size());
}

Result<HostMessage> PhoneClient::receive(Seconds timeout) {
  return connection_->receive(timeout);
}

Result<boost::json::object> PhoneClient::receive(std::string_view kind, Seconds timeout) {
  const Moment deadline = after(timeout);
  while (true) {
    const auto message = receive(until(deadline));
    if (!message && message.error().kind == Error::Kind::timedOut) return timedOut("\"" + std::string(kind) + "\"");
    if (!message) return message.error();
    if (auto control = controlIn(*message); isKind(control, kind)) return *std::move(control);
  }
}

Result<Seconds> PhoneClient::ping(Seconds timeout) {
  const Moment start = std::chrono::steady_clock::now();
  if (auto failure = send({{"t", "ping"}})) return *std::move(failure);
  if (const auto pong = receive("pong", timeout); !pong) return pong.error();
  return Seconds(std::chrono::steady_clock::now() - start);
}

Failure PhoneClient::finishWork(Seconds timeout) {
  // Icons are fetched in the same order as all such work, and none are wanted.
  if (auto failure = send({{"t", "getIcons"}, {"ids", boost::json::array()}})) return failure;
  const auto icons = receive("icons", timeout);
  return icons ? Failure() : icons.error();
}

Failure PhoneClient::idle(Seconds duration) {
  const Moment deadline = after(duration);
  while (true) {
    const auto message = receive(until(deadline));
    if (!message && message.error().kind == Error::Kind::timedOut) return std::nullopt;
    if (!message) return message.error();
  }
}

Failure PhoneClient::close(Seconds timeout) {
  return connection_->close(timeout);
}
void PhoneClient::reset() {
  connection_->reset();
}
void PhoneClient::hangUp() {
  connection_->hangUp();
}

}  // namespace orvel::phone
