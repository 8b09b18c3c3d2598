#include "platform/linux/SystemSocketMonitor.hpp"

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <limits>
#include <thread>
#include <utility>
#include <vector>

namespace orvel {
namespace {

/// Runs each test with a socket of one address family.
class SystemSocketMonitorTest : public ::testing::TestWithParam<int> {
 protected:
  SystemSocketMonitorTest() : socket_(socket(GetParam(), SOCK_STREAM | SOCK_CLOEXEC, 0)) {}
  ~SystemSocketMonitorTest() override { close(socket_); }

  int option(int level, int name) const {
    int value = -1;
    socklen_t size = sizeof value;
    EXPECT_EQ(getsockopt(socket_, level, name, &value, &size), 0);
    return value;
  }

  const int socket_;
};

TEST_P(SystemSocketMonitorTest, ASilentPeerIsProbedAfterTheIdleTime) {
  ASSERT_EQ(option(SOL_SOCKET, SO_KEEPALIVE), 0);
  ASSERT_TRUE(SystemSocketMonitor().enableKeepAlive(socket_, Seconds(10)));
  EXPECT_EQ(option(SOL_SOCKET, SO_KEEPALIVE), 1);
  EXPECT_EQ(option(IPPROTO_TCP, TCP_KEEPIDLE), 10);
}

TEST_P(SystemSocketMonitorTest, AVanishedPeerFailsWithinThirtySeconds) {
  ASSERT_TRUE(SystemSocketMonitor().enableKeepAlive(socket_, Seconds(10)));
  const int probesEnd =
      option(IPPROTO_TCP, TCP_KEEPIDLE) + option(IPPROTO_TCP, TCP_KEEPINTVL) * option(IPPROTO_TCP, TCP_KEEPCNT);
  EXPECT_GE(option(IPPROTO_TCP, TCP_KEEPCNT), 3) << "one lost packet must not cost a connection";
  EXPECT_LE(probesEnd, 27) << "data that leaves just before the end is looked after 3 s later";
}

TEST_P(SystemSocketMonitorTest, PartsOfASecondCountAsAWholeOne) {
  ASSERT_TRUE(SystemSocketMonitor().enableKeepAlive(socket_, Seconds(0.2)));
  EXPECT_EQ(option(IPPROTO_TCP, TCP_KEEPIDLE), 1);
}

TEST_P(SystemSocketMonitorTest, AnEndlessIdleTimeIsTheKernelsLongest) {
  ASSERT_TRUE(SystemSocketMonitor().enableKeepAlive(socket_, Seconds(std::numeric_limits<double>::infinity())));
  EXPECT_EQ(option(IPPROTO_TCP, TCP_KEEPIDLE), 32767);
}

TEST_P(SystemSocketMonitorTest, SenselessIdleTimesAreRefused) {
  EXPECT_FALSE(SystemSocketMonitor().enableKeepAlive(socket_, Seconds(0)));
  EXPECT_FALSE(SystemSocketMonitor().enableKeepAlive(socket_, Seconds(-1)));
  EXPECT_FALSE(SystemSocketMonitor().enableKeepAlive(socket_, Seconds(std::numeric_limits<double>::quiet_NaN())));
}

TEST_P(SystemSocketMonitorTest, WhatIsNoTCPSocketIsRefused) {
  EXPECT_FALSE(SystemSocketMonitor().enableKeepAlive(-1, Seconds(10)));
  const int datagrams = socket(GetParam(), SOCK_DGRAM | SOCK_CLOEXEC, 0);
  EXPECT_FALSE(SystemSocketMonitor().enableKeepAlive(datagrams, Seconds(10)));
  close(datagrams);
}

INSTANTIATE_TEST_SUITE_P(Families, SystemSocketMonitorTest, ::testing::Values(AF_INET, AF_INET6),
                         [](const auto& family) { return family.param == AF_INET ? "IPv4" : "IPv6"; });

/// Two ends of a connection of which the host's has unread data.
class HangUpTest : public ::testing::Test {
 protected:
  HangUpTest() {
    const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    EXPECT_EQ(bind(listener, reinterpret_cast<const sockaddr*>(&address), size), 0);
    EXPECT_EQ(listen(listener, 1), 0);
    EXPECT_EQ(getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size), 0);
    EXPECT_EQ(connect(phone_, reinterpret_cast<const sockaddr*>(&address), size), 0);
    host_ = accept(listener, nullptr, nullptr);
    close(listener);
    EXPECT_EQ(send(phone_, "unread", 6, 0), 6);
    EXPECT_FALSE(monitor_.hasHungUp(host_));
  }
  ~HangUpTest() override {
    if (phone_ >= 0) close(phone_);
    close(host_);
  }

  /// Loopback is swift, but not immediate.
  bool hasHungUp() {
    for (int look = 0; look < 200 && !monitor_.hasHungUp(host_); ++look) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return monitor_.hasHungUp(host_);
  }

  SystemSocketMonitor monitor_;
  int phone_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  int host_ = -1;
};

TEST_F(HangUpTest, IsSeenBehindUnreadDataWhenThePeerSendsNoMore) {
  shutdown(phone_, SHUT_WR);
  EXPECT_TRUE(hasHungUp());
}

TEST_F(HangUpTest, IsSeenBehindUnreadDataWhenThePeerCloses) {
  close(std::exchange(phone_, -1));
  EXPECT_TRUE(hasHungUp());
}

TEST_F(HangUpTest, IsSeenBehindUnreadDataWhenThePeerResets) {
  const linger hard{.l_onoff = 1, .l_linger = 0};
  setsockopt(phone_, SOL_SOCKET, SO_LINGER, &hard, sizeof hard);
  close(std::exchange(phone_, -1));
  EXPECT_TRUE(hasHungUp());
}

TEST_F(HangUpTest, IsTrueOfASocketThatIsNone) {
  EXPECT_TRUE(monitor_.hasHungUp(-1));
}

TEST(SystemSocketMonitor, ABacklogLeavesAtThePaceOfTheConnectionLessWhatIsOnItsWay) {
  constexpr std::uint32_t unknown = 0xffffffff;
  struct Case {
    SystemSocketMonitor::Pace pace;
    double seconds;
  };
  for (const Case& expected :
       {Case{{.unacknowledged = 0, .bytesPerSecond = 1000, .shortestTrip = 0}, 0},
        Case{{.unacknowledged = 60'000, .bytesPerSecond = 600'000, .shortestTrip = 0}, 0.1},
        Case{{.unacknowledged = 60'000, .bytesPerSecond = 600'000, .shortestTrip = 40'000}, 0.06},
        Case{{.unacknowledged = 20'000, .bytesPerSecond = 600'000, .shortestTrip = 40'000}, 0},
        Case{{.unacknowledged = 60'000, .bytesPerSecond = 600'000, .shortestTrip = unknown}, 0.1},
        Case{{.unacknowledged = 60'000, .bytesPerSecond = 0, .shortestTrip = unknown}, 60},
        Case{{.unacknowledged = 60'000, .bytesPerSecond = 0, .shortestTrip = 40'000}, 59.96}}) {
    const Backlog backlog = SystemSocketMonitor::backlogAt(expected.pace);
    EXPECT_EQ(backlog.bytes, expected.pace.unacknowledged);
    EXPECT_NEAR(backlog.time.count(), expected.seconds, 1e-9) << expected.pace.unacknowledged;
  }
}

/// Two ends of a connection on loopback; the far one reads only on request.
class SystemSocketMonitorDeliveryTest : public ::testing::Test {
 protected:
  SystemSocketMonitorDeliveryTest() {
    const int listener = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* name = reinterpret_cast<sockaddr*>(&address);
    EXPECT_EQ(bind(listener, name, size), 0);
    EXPECT_EQ(listen(listener, 1), 0);
    EXPECT_EQ(getsockname(listener, name, &size), 0);
    EXPECT_EQ(connect(near_, name, size), 0);
    far_ = accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
    close(listener);
  }
  ~SystemSocketMonitorDeliveryTest() override {
    close(near_);
    close(far_);
  }

  Delivery delivery(Seconds timeout = Seconds(0)) { return SystemSocketMonitor().delivery(near_, timeout); }

  Backlog backlog() { return SystemSocketMonitor().backlog(near_); }

  /// Sends until the far end and the kernel have no more room.
  void fill() {
    const std::vector<char> block(65536);
    while (send(near_, block.data(), block.size(), MSG_DONTWAIT) > 0) {
    }
  }

  const int near_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
  int far_ = -1;
};

TEST_F(SystemSocketMonitorDeliveryTest, WhatWasTakenIsDone) {
  EXPECT_EQ(delivery(), Delivery::done);
  ASSERT_EQ(send(near_, "x", 1, 0), 1);
  char byte = 0;
  ASSERT_EQ(recv(far_, &byte, 1, 0), 1);
  EXPECT_EQ(delivery(), Delivery::done);
}

TEST_F(SystemSocketMonitorDeliveryTest, APeerWithoutRoomLivesAllTheSame) {
  fill();
  // Long enough for a few probes of the closed window, all of them answered.
  std::this_thread::sleep_for(std::chrono::milliseconds(1500));
  EXPECT_EQ(delivery(), Delivery::pending);
}

TEST_F(SystemSocketMonitorDeliveryTest, WhatWasTakenIsNoBacklog) {
  EXPECT_EQ(backlog().bytes, 0u);
  EXPECT_EQ(backlog().time, Seconds(0));
  ASSERT_EQ(send(near_, "x", 1, 0), 1);
  char byte = 0;
  ASSERT_EQ(recv(far_, &byte, 1, 0), 1);
  EXPECT_EQ(backlog().bytes, 0u);
  EXPECT_EQ(backlog().time, Seconds(0));
}

TEST_F(SystemSocketMonitorDeliveryTest, WhatThePeerHasNoRoomForIsABacklog) {
  fill();
  EXPECT_GT(backlog().bytes, 10'000u);
}

TEST_F(SystemSocketMonitorDeliveryTest, ASocketThatIsNoneHasNoBacklog) {
  EXPECT_EQ(SystemSocketMonitor().backlog(-1).bytes, 0u);
}

TEST_F(SystemSocketMonitorDeliveryTest, ASocketThatIsNoneHasNothingToDeliver) {
  EXPECT_EQ(SystemSocketMonitor().delivery(-1, Seconds(0)), Delivery::done);
}

}  // namespace
}  // namespace orvel
