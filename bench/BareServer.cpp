#include "bench/BareServer.hpp"

#include "bench/ServerProcess.hpp"
#include "desktop/Descriptor.hpp"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <list>
#include <string_view>

namespace orvel::bench {
namespace {

constexpr std::size_t headerSize = 6;
constexpr std::size_t frameSize = 5;
constexpr std::string_view endOfRequest = "\r\n\r\n";
constexpr std::string_view answer =
    "HTTP/1.1 101 Switching Protocols\r\n"
    "Upgrade: websocket\r\n"
    "Connection: Upgrade\r\n"
    "\r\n";

struct Connection {
  Descriptor socket;
  bool isOpen = false;
  std::size_t filled = 0;
  std::array<std::uint8_t, 2048> buffer;
};

class BareServer {
 public:
  explicit BareServer(Tally& tally) : tally_(tally) {}

  void run();

 private:
  bool listen();
  void accept();
  bool read(Connection& connection);
  static void answerRequest(Connection& connection);
  bool takeFrames(Connection& connection);

  Tally& tally_;
  Descriptor listener_;
  const Descriptor events_{epoll_create1(EPOLL_CLOEXEC)};
  std::list<Connection> connections_;
  std::int64_t dx_ = 0;
  std::int64_t dy_ = 0;
};

void BareServer::run() {
  if (!listen()) return;
  std::array<epoll_event, 64> ready{};
  while (true) {
    const int count = epoll_wait(events_.get(), ready.data(), ready.size(), -1);
    for (int i = 0; i < count; ++i) {
      auto* const connection = static_cast<Connection*>(ready[static_cast<std::size_t>(i)].data.ptr);
      if (connection == nullptr) {
        accept();
      } else if (!read(*connection)) {
        return;
      }
    }
    tally_.dx.store(dx_, std::memory_order_relaxed);
    tally_.dy.store(dy_, std::memory_order_relaxed);
  }
}

bool BareServer::listen() {
  const std::uint16_t port = freePort();
  listener_ = Descriptor(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  epoll_event event{.events = EPOLLIN, .data = {.ptr = nullptr}};
  if (bind(listener_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
      ::listen(listener_.get(), SOMAXCONN) != 0 ||
      epoll_ctl(events_.get(), EPOLL_CTL_ADD, listener_.get(), &event) != 0) {
    return false;
  }
  tally_.port = port;
  return true;
}

void BareServer::accept() {
  Connection& connection = connections_.emplace_back();
  connection.socket = Descriptor(accept4(listener_.get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC));
  constexpr int yes = 1;
  setsockopt(connection.socket.get(), IPPROTO_TCP, TCP_NODELAY, &yes, sizeof yes);
  epoll_event event{.events = EPOLLIN, .data = {.ptr = &connection}};
  epoll_ctl(events_.get(), EPOLL_CTL_ADD, connection.socket.get(), &event);
}

bool BareServer::read(Connection& connection) {
  const ssize_t size = recv(connection.socket.get(), connection.buffer.data() + connection.filled,
                            connection.buffer.size() - connection.filled, 0);
  if (size <= 0) return false;
  connection.filled += static_cast<std::size_t>(size);
  if (connection.isOpen) return takeFrames(connection);
  answerRequest(connection);
  return true;
}

void BareServer::answerRequest(Connection& connection) {
  const std::string_view request(reinterpret_cast<const char*>(connection.buffer.data()), connection.filled);
  if (!request.ends_with(endOfRequest)) return;
  connection.isOpen = true;
  connection.filled = 0;
  send(connection.socket.get(), answer.data(), answer.size(), MSG_NOSIGNAL);
}

bool BareServer::takeFrames(Connection& connection) {
  std::uint8_t* next = connection.buffer.data();
  std::size_t left = connection.filled;
  while (left >= headerSize + frameSize) {
    if (next[0] != 0x82 || next[1] != (0x80 | frameSize)) return false;
    std::uint8_t* const frame = next + headerSize;
    for (std::size_t i = 0; i < frameSize; ++i) frame[i] ^= next[2 + i % 4];
    std::int16_t dx = 0;
    std::int16_t dy = 0;
    std::memcpy(&dx, frame + 1, sizeof dx);
    std::memcpy(&dy, frame + 3, sizeof dy);
    dx_ += dx;
    dy_ += dy;
    next += headerSize + frameSize;
    left -= headerSize + frameSize;
  }
  if (left > 0) std::memmove(connection.buffer.data(), next, left);
  connection.filled = left;
  return true;
}

}  // namespace

void runBareServer(Tally& tally) {
  BareServer(tally).run();
}

}  // namespace orvel::bench
