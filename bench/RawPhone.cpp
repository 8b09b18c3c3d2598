#include "bench/RawPhone.hpp"

#include "tools/PhoneClient.hpp"

#include <arpa/inet.h>
#include <boost/json/object.hpp>
#include <boost/json/parse.hpp>
#include <boost/json/serialize.hpp>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <cstring>
#include <stdexcept>

namespace orvel::bench {
namespace {

constexpr timeval timeout{10, 0};
constexpr std::uint8_t finalFlag = 0x80;
constexpr std::uint8_t maskFlag = 0x80;
constexpr std::uint8_t textOpcode = 1;
constexpr std::uint8_t binaryOpcode = 2;
constexpr std::uint8_t twoByteLength = 126;
constexpr std::size_t longestHeader = 8;
constexpr std::string_view request =
    "GET / HTTP/1.1\r\n"
    "Host: localhost\r\n"
    "Upgrade: websocket\r\n"
    "Connection: Upgrade\r\n"
    "Sec-WebSocket-Key: b3J2ZWwtYmVuY2htYXJrIQ==\r\n"
    "Sec-WebSocket-Version: 13\r\n"
    "\r\n";

/// An open connection, or none.
Descriptor connectTo(std::uint16_t port) {
  Descriptor socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) return {};
  return socket;
}

}  // namespace

RawPhone::RawPhone(std::uint16_t port) : socket_(connectTo(port)) {
  if (!socket_.isOpen()) throw std::runtime_error("a phone could not connect");
  constexpr int yes = 1;
  setsockopt(socket_.get(), IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
  setsockopt(socket_.get(), SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout);
  openWebSocket();
}

bool RawPhone::isAnswered(std::uint16_t port) {
  return connectTo(port).isOpen();
}

void RawPhone::openWebSocket() {
  if (send(socket_.get(), request.data(), request.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(request.size())) {
    throw std::runtime_error("a phone could not ask for a WebSocket");
  }
  std::string answer;
  // Byte by byte, for the greeting may follow at once.
  while (!answer.ends_with("\r\n\r\n")) {
    char next = 0;
    receiveExactly({&next, 1});
    answer += next;
  }
  if (!answer.starts_with("HTTP/1.1 101 ")) throw std::runtime_error("a phone was refused a WebSocket");
}

void RawPhone::pair(std::string_view token, std::string_view device) {
  const boost::json::value hello = boost::json::parse(receiveText());
  const std::string proof = phone::proofOf(token, hello.at("nonce").as_string());
  sendText(boost::json::serialize(boost::json::object{{"t", "auth"}, {"proof", proof}, {"device", device}}));
  const boost::json::value answer = boost::json::parse(receiveText());
  if (answer.at("t").as_string() != "ready") throw std::runtime_error("a phone was not welcome");
}

void RawPhone::sendFrame(std::span<const std::uint8_t> frame) {
  if (frame.size() > longestShortPayload) throw std::logic_error("a frame is too long for a benchmark");
  sendMasked(binaryOpcode, frame);
}

void RawPhone::sendText(std::string_view text) {
  sendMasked(textOpcode, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

void RawPhone::sendMasked(std::uint8_t opcode, std::span<const std::uint8_t> payload) {
  std::array<std::uint8_t, longestHeader + 1024> message;
  if (payload.size() > message.size() - longestHeader) throw std::logic_error("a message is too long for a benchmark");
  std::size_t size = 0;
  message[size++] = finalFlag | opcode;
  if (payload.size() <= longestShortPayload) {
    message[size++] = static_cast<std::uint8_t>(maskFlag | payload.size());
  } else {
    message[size++] = maskFlag | twoByteLength;
    message[size++] = static_cast<std::uint8_t>(payload.size() >> 8);
    message[size++] = static_cast<std::uint8_t>(payload.size() & 0xff);
  }
  randomness_ = randomness_ * 1664525 + 1013904223;
  std::uint8_t* const mask = message.data() + size;
  std::memcpy(mask, &randomness_, sizeof randomness_);
  size += sizeof randomness_;
  for (std::size_t i = 0; i < payload.size(); ++i) message[size++] = payload[i] ^ mask[i % sizeof randomness_];
  if (send(socket_.get(), message.data(), size, MSG_NOSIGNAL) != static_cast<ssize_t>(size)) {
    throw std::runtime_error("the host does not take what a phone sends");
  }
}

std::string RawPhone::receiveText() {
  std::array<char, 2> header{};
  receiveExactly(header);
  std::size_t size = static_cast<std::uint8_t>(header[1]);
  if (static_cast<std::uint8_t>(header[0]) != (finalFlag | textOpcode) || size > twoByteLength) {
    throw std::runtime_error("the host sent something unexpected");
  }
  if (size == twoByteLength) {
    std::array<char, 2> length{};
    receiveExactly(length);
    size = static_cast<std::size_t>(static_cast<std::uint8_t>(length[0])) << 8 | static_cast<std::uint8_t>(length[1]);
  }
  std::string text(size, '\0');
  receiveExactly(text);
  return text;
}

void RawPhone::receiveExactly(std::span<char> target) {
  const ssize_t size = recv(socket_.get(), target.data(), target.size(), MSG_WAITALL);
  if (size != static_cast<ssize_t>(target.size())) throw std::runtime_error("the host left a phone without an answer");
}

}  // namespace orvel::bench
