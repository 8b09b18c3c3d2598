#include "platform/linux/SystemSocketMonitor.hpp"

#include <linux/sockios.h>
#include <linux/tcp.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <optional>

namespace orvel {
namespace {

constexpr int probeInterval = 4;
constexpr int probeCount = 4;
constexpr unsigned fewRepeats = 2;
constexpr double slowestPace = 1000;   // bytes a second, until the kernel knows better
constexpr double longestIdle = 32767;  // the kernel takes no more
constexpr int established = 1;         // the state of a connection as long as neither end has ended it

/// What the kernel knows of a connection, and how many bytes the peer has not acknowledged.
struct ConnectionState {
  tcp_info info{};
  int waiting = 0;
};

std::optional<ConnectionState> stateOf(int socket) {
  ConnectionState known;
  socklen_t size = sizeof known.info;
  if (getsockopt(socket, IPPROTO_TCP, TCP_INFO, &known.info, &size) != 0) return std::nullopt;
  if (ioctl(socket, SIOCOUTQ, &known.waiting) != 0) return std::nullopt;
  return known;
}

bool setOption(int socket, int level, int name, int value) {
  return setsockopt(socket, level, name, &value, sizeof value) == 0;
}

}  // namespace

bool SystemSocketMonitor::enableKeepAlive(int socket, Seconds idle) {
  if (!(idle > Seconds(0))) return false;
  const int idleSeconds = static_cast<int>(std::ceil(std::min(idle.count(), longestIdle)));
  return setOption(socket, SOL_SOCKET, SO_KEEPALIVE, 1) && setOption(socket, IPPROTO_TCP, TCP_KEEPIDLE, idleSeconds) &&
         setOption(socket, IPPROTO_TCP, TCP_KEEPINTVL, probeInterval) &&
         setOption(socket, IPPROTO_TCP, TCP_KEEPCNT, probeCount);
}

// The kernel's own limit, TCP_USER_TIMEOUT, would do almost the same, but it also ends a connection whose peer answers
// every probe and only has no room: a phone whose program is asleep.
Delivery SystemSocketMonitor::delivery(int socket, Seconds timeout) {
  const auto known = stateOf(socket);
  if (!known || known->waiting == 0) return Delivery::done;
  // Both are counted from the peer's last answer.
  const unsigned repeats = std::max(known->info.tcpi_retransmits, known->info.tcpi_probes);
  const Seconds silence = std::chrono::milliseconds(known->info.tcpi_last_ack_recv);
  return repeats >= fewRepeats && silence > timeout ? Delivery::ignored : Delivery::pending;
}

bool SystemSocketMonitor::hasHungUp(int socket) {
  const auto known = stateOf(socket);
  return !known || known->info.tcpi_state != established;
}

Backlog SystemSocketMonitor::backlog(int socket) {
  const auto known = stateOf(socket);
  if (!known || known->waiting <= 0) return {};
  return backlogAt({.unacknowledged = static_cast<std::size_t>(known->waiting),
                    .bytesPerSecond = known->info.tcpi_delivery_rate,
                    .shortestTrip = known->info.tcpi_min_rtt});
}

Backlog SystemSocketMonitor::backlogAt(const Pace& pace) {
  const double bytesPerSecond = std::max(static_cast<double>(pace.bytesPerSecond), slowestPace);
  const bool isTripKnown = pace.shortestTrip != std::numeric_limits<std::uint32_t>::max();
  // As much as fits into one way and back is on that way, not here.
  const Seconds underWay = isTripKnown ? std::chrono::microseconds(pace.shortestTrip) : Seconds(0);
  const Seconds time(static_cast<double>(pace.unacknowledged) / bytesPerSecond);
  return {.bytes = pace.unacknowledged, .time = std::max(Seconds(time - underWay), Seconds(0))};
}

}  // namespace orvel
