#include "platform/linux/SystemSocketTuner.hpp"

#include <linux/sockios.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <algorithm>
#include <chrono>
#include <cmath>

namespace orvel {
namespace {

constexpr int probeInterval = 4;
constexpr int probeCount = 4;
constexpr unsigned fewRepeats = 2;
constexpr double longestIdle = 32767;  // the kernel takes no more

bool setOption(int socket, int level, int name, int value) {
  return setsockopt(socket, level, name, &value, sizeof value) == 0;
}

}  // namespace

bool SystemSocketTuner::enableKeepAlive(int socket, Seconds idle) {
  if (!(idle > Seconds(0))) return false;
  const int idleSeconds = static_cast<int>(std::ceil(std::min(idle.count(), longestIdle)));
  return setOption(socket, SOL_SOCKET, SO_KEEPALIVE, 1) && setOption(socket, IPPROTO_TCP, TCP_KEEPIDLE, idleSeconds) &&
         setOption(socket, IPPROTO_TCP, TCP_KEEPINTVL, probeInterval) &&
         setOption(socket, IPPROTO_TCP, TCP_KEEPCNT, probeCount);
}

// The kernel's own limit, TCP_USER_TIMEOUT, would do almost the same, but it also ends a connection whose peer answers
// every probe and only has no room: a phone whose program is asleep.
Delivery SystemSocketTuner::delivery(int socket, Seconds patience) {
  tcp_info info{};
  socklen_t size = sizeof info;
  int waiting = 0;
  if (getsockopt(socket, IPPROTO_TCP, TCP_INFO, &info, &size) != 0 || ioctl(socket, SIOCOUTQ, &waiting) != 0) {
    return Delivery::done;
  }
  if (waiting == 0) return Delivery::done;
  // Both are counted from the peer's last answer.
  const unsigned repeats = std::max(info.tcpi_retransmits, info.tcpi_probes);
  const Seconds silence = std::chrono::milliseconds(info.tcpi_last_ack_recv);
  return repeats >= fewRepeats && silence > patience ? Delivery::ignored : Delivery::pending;
}

}  // namespace orvel
