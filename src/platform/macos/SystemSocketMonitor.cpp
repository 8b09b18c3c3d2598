#include "platform/macos/SystemSocketMonitor.hpp"

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <optional>

namespace orvel {
namespace {

constexpr int probeInterval = 4;
constexpr int probeCount = 4;
constexpr double slowestPace = 1000;      // bytes a second
constexpr double longestTimeout = 32767;  // seconds; the kernel counts milliseconds in 32 bits
constexpr int established = 4;            // the state of a connection as long as neither end has ended it

std::optional<tcp_connection_info> connectionInfo(int socket) {
  tcp_connection_info info{};
  socklen_t size = sizeof info;
  if (getsockopt(socket, IPPROTO_TCP, TCP_CONNECTION_INFO, &info, &size) != 0) return std::nullopt;
  return info;
}

bool setOption(int socket, int level, int name, int value) {
  return setsockopt(socket, level, name, &value, sizeof value) == 0;
}

/// At least one, as none stands for no limit at all.
int wholeSeconds(Seconds duration) {
  return static_cast<int>(std::ceil(std::clamp(duration.count(), 1.0, longestTimeout)));
}

}  // namespace

bool SystemSocketMonitor::enableKeepAlive(int socket, Seconds idle) {
  if (!(idle > Seconds(0))) return false;
  return setOption(socket, SOL_SOCKET, SO_KEEPALIVE, 1) &&
         setOption(socket, IPPROTO_TCP, TCP_KEEPALIVE, wholeSeconds(idle)) &&
         setOption(socket, IPPROTO_TCP, TCP_KEEPINTVL, probeInterval) &&
         setOption(socket, IPPROTO_TCP, TCP_KEEPCNT, probeCount);
}

// The limit counts from the first repetition and is looked at with each further one, so a vanished peer may be given up
// late; by then the probes have ended the connection. A peer that has no room is not sent repetitions, but asked for
// room, which it answers: it is not given up.
Delivery SystemSocketMonitor::delivery(int socket, Seconds timeout) {
  const auto info = connectionInfo(socket);
  if (!info || info->tcpi_snd_sbbytes == 0) return Delivery::done;
  setOption(socket, IPPROTO_TCP, TCP_RXT_CONNDROPTIME, wholeSeconds(timeout));
  return Delivery::pending;
}

bool SystemSocketMonitor::hasHungUp(int socket) {
  const auto info = connectionInfo(socket);
  return !info || info->tcpi_state != established;
}

Backlog SystemSocketMonitor::backlog(int socket) {
  const auto info = connectionInfo(socket);
  if (!info) return {};
  return backlogAt({.unacknowledged = info->tcpi_snd_sbbytes,
                    .window = std::min(info->tcpi_snd_cwnd, info->tcpi_snd_wnd),
                    .trip = info->tcpi_srtt});
}

Backlog SystemSocketMonitor::backlogAt(const Pace& pace) {
  // As much as fits into one way and back is on that way, not here.
  const std::uint32_t waiting = pace.unacknowledged - std::min(pace.unacknowledged, pace.window);
  const Seconds trip = std::chrono::milliseconds(std::max(pace.trip, 1u));
  const double bytesPerSecond = std::max(pace.window / trip.count(), slowestPace);
  return {.bytes = pace.unacknowledged, .time = Seconds(waiting / bytesPerSecond)};
}

}  // namespace orvel
