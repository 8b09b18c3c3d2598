#include "session/RawWebSocket.hpp"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>

namespace orvel {
namespace {

#ifdef MSG_NOSIGNAL
constexpr int sendOptions = MSG_NOSIGNAL | MSG_DONTWAIT;
#else
constexpr int sendOptions = MSG_DONTWAIT;
#endif

/// That a peer is gone is an error and not a signal, where that is said of the socket and not of what is sent.
void forgoSignals(int socket) {
#ifdef SO_NOSIGPIPE
  constexpr int yes = 1;
  setsockopt(socket, SOL_SOCKET, SO_NOSIGPIPE, &yes, sizeof yes);
#else
  static_cast<void>(socket);
#endif
}

constexpr std::array<char, 4> mask = {0x12, 0x34, 0x56, 0x78};
constexpr std::uint8_t finalBit = 0x80;
constexpr std::uint8_t maskBit = 0x80;

std::string bigEndian(std::uint64_t value, int size) {
  std::string bytes;
  for (int shift = (size - 1) * 8; shift >= 0; shift -= 8) bytes += static_cast<char>(value >> shift & 0xff);
  return bytes;
}

std::uint64_t numberIn(std::string_view bytes) {
  std::uint64_t value = 0;
  for (const char byte : bytes) value = value << 8 | static_cast<std::uint8_t>(byte);
  return value;
}

std::string lengthField(const RawFrame& frame) {
  const std::uint64_t length = frame.declaredLength.value_or(frame.payload.size());
  const std::uint8_t masked = frame.masked ? maskBit : 0;
  using Form = RawFrame::LengthForm;
  if (frame.lengthForm == Form::shortest && length < 126) return {static_cast<char>(masked | length)};
  if (frame.lengthForm == Form::inTwoBytes || (frame.lengthForm == Form::shortest && length < 65536)) {
    return static_cast<char>(masked | 126) + bigEndian(length, 2);
  }
  return static_cast<char>(masked | 127) + bigEndian(length, 8);
}

std::string line(const std::string& text) {
  return text.empty() ? "" : text + "\r\n";
}

}  // namespace

std::string bytesOf(const RawFrame& frame) {
  std::string bytes(1, static_cast<char>((frame.final ? finalBit : 0) | frame.reserved << 4 | frame.opcode));
  bytes += lengthField(frame);
  if (!frame.masked) return bytes + frame.payload;
  bytes.append(mask.begin(), mask.end());
  bytes.reserve(bytes.size() + frame.payload.size());
  for (std::size_t i = 0; i < frame.payload.size(); ++i) bytes += static_cast<char>(frame.payload[i] ^ mask[i % 4]);
  return bytes;
}

std::string closePayload(std::uint16_t code, std::string_view reason) {
  return bigEndian(code, 2).append(reason);
}

std::optional<std::uint16_t> closeCode(const RawFrame& frame) {
  if (frame.opcode != opcode::close || frame.payload.size() < 2) return std::nullopt;
  return static_cast<std::uint16_t>(numberIn(std::string_view(frame.payload).substr(0, 2)));
}

std::string bytesOf(const RawHandshake& handshake) {
  return line(handshake.requestLine) + "Host: 127.0.0.1\r\n" + line(handshake.upgrade) + line(handshake.connection) +
         line(handshake.key) + line(handshake.version) + handshake.more + "\r\n";
}

RawWebSocket::RawWebSocket(std::uint16_t port, std::optional<int> receiveBuffer)
    : socket_(::socket(AF_INET, SOCK_STREAM, 0)) {
  forgoSignals(socket_);
  if (receiveBuffer) setsockopt(socket_, SOL_SOCKET, SO_RCVBUF, &*receiveBuffer, sizeof(int));
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (::connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0) return;
  ::close(socket_);
  socket_ = -1;
}

RawWebSocket::~RawWebSocket() {
  if (socket_ >= 0) ::close(socket_);
}

bool RawWebSocket::open() {
  if (!send(bytesOf(RawHandshake{}))) return false;
  const std::string head = readHead();
  // What the sample key of RFC 6455 asks for.
  return head.starts_with("HTTP/1.1 101 ") && head.find("s3pPLMBiTxaQ9kYGzzhZRbK+xOo=") != std::string::npos;
}

bool RawWebSocket::send(std::string_view bytes, Limit limit) {
  while (!bytes.empty()) {
    if (!waitUntil(POLLOUT, std::chrono::steady_clock::now() + limit)) return false;
    const ssize_t count = ::send(socket_, bytes.data(), bytes.size(), sendOptions);
    if (count < 0 && errno != EAGAIN) return false;
    if (count > 0) bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

bool RawWebSocket::send(const RawFrame& frame) {
  return send(bytesOf(frame));
}

std::string RawWebSocket::readHead() {
  constexpr std::string_view emptyLine = "\r\n\r\n";
  const Moment deadline = std::chrono::steady_clock::now() + usualLimit;
  auto end = received_.find(emptyLine);
  while (end == std::string::npos && readSome(deadline)) end = received_.find(emptyLine);
  return take(end == std::string::npos ? received_.size() : end + emptyLine.size());
}

std::optional<RawFrame> RawWebSocket::readFrame(Limit limit) {
  const Moment deadline = std::chrono::steady_clock::now() + limit;
  if (!fill(2, deadline)) return std::nullopt;
  const std::string start = take(2);
  const auto first = static_cast<std::uint8_t>(start[0]);
  const auto second = static_cast<std::uint8_t>(start[1]);
  std::uint64_t length = second & 0x7f;
  if (const std::size_t more = length == 126 ? 2 : length == 127 ? 8 : 0; more > 0) {
    if (!fill(more, deadline)) return std::nullopt;
    length = numberIn(take(more));
  }
  if (!fill(length, deadline)) return std::nullopt;
  return RawFrame{.opcode = static_cast<std::uint8_t>(first & 0x0f),
                  .payload = take(length),
                  .final = (first & finalBit) != 0,
                  .reserved = static_cast<std::uint8_t>(first >> 4 & 7),
                  .masked = (second & maskBit) != 0,
                  .lengthForm = RawFrame::LengthForm::shortest,
                  .declaredLength = std::nullopt};
}

bool RawWebSocket::waitForEnd(Limit limit) {
  const Moment deadline = std::chrono::steady_clock::now() + limit;
  while (readSome(deadline)) received_.clear();
  return ended_;
}

bool RawWebSocket::waitUntilSocketIsGone(Limit limit) {
  constexpr Limit pause{20};
  const Moment deadline = std::chrono::steady_clock::now() + limit;
  while (std::chrono::steady_clock::now() < deadline) {
    if (::send(socket_, "x", 1, sendOptions) < 0 && errno != EAGAIN) return true;
    // Only the errors that are reported unasked: the reset that answers the byte.
    waitUntil(0, std::chrono::steady_clock::now() + pause);
  }
  return false;
}

void RawWebSocket::finishSending() {
  ::shutdown(socket_, SHUT_WR);
}

void RawWebSocket::reset() {
  const linger hard{.l_onoff = 1, .l_linger = 0};
  setsockopt(socket_, SOL_SOCKET, SO_LINGER, &hard, sizeof(hard));
  ::close(socket_);
  socket_ = -1;
}

bool RawWebSocket::waitUntil(short events, Moment deadline) const {
  const auto left = std::chrono::duration_cast<Limit>(deadline - std::chrono::steady_clock::now());
  pollfd descriptor{.fd = socket_, .events = events, .revents = 0};
  return ::poll(&descriptor, 1, static_cast<int>(std::max<Limit::rep>(left.count(), 0))) > 0;
}

bool RawWebSocket::fill(std::size_t size, Moment deadline) {
  while (received_.size() < size) {
    if (!readSome(deadline)) return false;
  }
  return true;
}

bool RawWebSocket::readSome(Moment deadline) {
  if (!waitUntil(POLLIN, deadline)) return false;
  std::array<char, 65536> chunk;
  const ssize_t count = ::recv(socket_, chunk.data(), chunk.size(), MSG_DONTWAIT);
  if (count > 0) received_.append(chunk.data(), static_cast<std::size_t>(count));
  ended_ = count == 0 || (count < 0 && errno != EAGAIN);
  return count > 0;
}

std::string RawWebSocket::take(std::size_t size) {
  std::string bytes = received_.substr(0, size);
  received_.erase(0, size);
  return bytes;
}

}  // namespace orvel
