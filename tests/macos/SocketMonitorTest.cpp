#include "MacTest.hpp"
#include "frameworks/Sockets.hpp"
#include "platform/macos/SystemSocketMonitor.hpp"

#include <netinet/in.h>
#include <sys/socket.h>

#include <cstdint>
#include <limits>
#include <map>

namespace orvel {
namespace {

constexpr int socketNumber = 7;
constexpr fake::Sockets::Option keepAlive{SOL_SOCKET, SO_KEEPALIVE};
constexpr fake::Sockets::Option idleTime{IPPROTO_TCP, 0x10};
constexpr fake::Sockets::Option repeatTime{IPPROTO_TCP, 0x80};
constexpr fake::Sockets::Option probeInterval{IPPROTO_TCP, 0x101};
constexpr fake::Sockets::Option probeCount{IPPROTO_TCP, 0x102};
constexpr double endless = std::numeric_limits<double>::infinity();
constexpr double noNumber = std::numeric_limits<double>::quiet_NaN();

class SocketMonitorTest : public MacTest {
 protected:
  void SetUp() override {
    MacTest::SetUp();
    fake::sockets() = {};
  }

  static std::map<fake::Sockets::Option, int> options() { return fake::sockets().options[socketNumber]; }
  static tcp_connection_info& connection() { return fake::sockets().connections[socketNumber]; }

  SystemSocketMonitor monitor_;
};

TEST_F(SocketMonitorTest, AVanishedPeerFailsWithinThirtySeconds) {
  ASSERT_TRUE(monitor_.enableKeepAlive(socketNumber, Seconds(10)));
  EXPECT_EQ(options(), (std::map<fake::Sockets::Option, int>{
                           {keepAlive, 1}, {idleTime, 10}, {probeInterval, 4}, {probeCount, 4}}));
}

TEST_F(SocketMonitorTest, PartsOfASecondCountAsAWholeOne) {
  ASSERT_TRUE(monitor_.enableKeepAlive(socketNumber, Seconds(0.2)));
  EXPECT_EQ(options()[idleTime], 1);
  ASSERT_TRUE(monitor_.enableKeepAlive(socketNumber, Seconds(1.2)));
  EXPECT_EQ(options()[idleTime], 2);
}

TEST_F(SocketMonitorTest, AnEndlessIdleTimeIsALongOne) {
  ASSERT_TRUE(monitor_.enableKeepAlive(socketNumber, Seconds(endless)));
  EXPECT_EQ(options()[idleTime], 32767);
}

TEST_F(SocketMonitorTest, SenselessIdleTimesAreRefused) {
  for (const double idle : {0.0, -1.0, noNumber}) {
    EXPECT_FALSE(monitor_.enableKeepAlive(socketNumber, Seconds(idle))) << idle;
  }
  EXPECT_TRUE(options().empty());
}

TEST_F(SocketMonitorTest, WhatTheKernelRefusesIsReported) {
  for (const auto& option : {keepAlive, idleTime, probeInterval, probeCount}) {
    fake::sockets().refused = {option};
    EXPECT_FALSE(monitor_.enableKeepAlive(socketNumber, Seconds(10))) << option.second;
  }
}

TEST_F(SocketMonitorTest, WhatWasTakenIsDone) {
  connection().tcpi_snd_sbbytes = 0;
  EXPECT_EQ(monitor_.delivery(socketNumber, Seconds(14)), Delivery::done);
  EXPECT_TRUE(options().empty());
}

TEST_F(SocketMonitorTest, WhatWasNotTakenIsPendingUntilTheKernelGivesUp) {
  connection().tcpi_snd_sbbytes = 1;
  EXPECT_EQ(monitor_.delivery(socketNumber, Seconds(14)), Delivery::pending);
  EXPECT_EQ(options(), (std::map<fake::Sockets::Option, int>{{repeatTime, 14}}));
}

TEST_F(SocketMonitorTest, APeerThatHasEndedItsSideHasHungUp) {
  constexpr int established = 4;
  connection().tcpi_state = established;
  EXPECT_FALSE(monitor_.hasHungUp(socketNumber));
  for (const int state : {0, 5, 9}) {
    connection().tcpi_state = static_cast<std::uint8_t>(state);
    EXPECT_TRUE(monitor_.hasHungUp(socketNumber)) << state;
  }
}

TEST_F(SocketMonitorTest, ATimeoutOfNothingIsNotEndless) {
  connection().tcpi_snd_sbbytes = 1;
  EXPECT_EQ(monitor_.delivery(socketNumber, Seconds(0)), Delivery::pending);
  EXPECT_EQ(options()[repeatTime], 1);
}

TEST_F(SocketMonitorTest, ASocketThatIsNoneHasNothingToDeliver) {
  EXPECT_EQ(monitor_.delivery(-1, Seconds(14)), Delivery::done);
  EXPECT_EQ(monitor_.backlog(-1).bytes, 0u);
  EXPECT_EQ(monitor_.backlog(-1).time, Seconds(0));
}

TEST_F(SocketMonitorTest, ABacklogIsWhatTheKernelReports) {
  connection().tcpi_snd_sbbytes = 90'000;
  connection().tcpi_snd_cwnd = 30'000;
  connection().tcpi_snd_wnd = 60'000;
  connection().tcpi_srtt = 50;
  EXPECT_EQ(monitor_.backlog(socketNumber).bytes, 90'000u);
  EXPECT_NEAR(monitor_.backlog(socketNumber).time.count(), 0.1, 1e-9);
  connection().tcpi_snd_cwnd = 200'000;
  EXPECT_NEAR(monitor_.backlog(socketNumber).time.count(), 0.025, 1e-9) << "the peer has no more room than this";
}

TEST_F(SocketMonitorTest, ABacklogLeavesAtThePaceOfTheConnectionLessWhatIsOnItsWay) {
  struct Case {
    SystemSocketMonitor::Pace pace;
    double seconds;
  };
  for (const Case& expected : {Case{{.unacknowledged = 0, .window = 10'000, .trip = 10}, 0},
                               Case{{.unacknowledged = 10'000, .window = 10'000, .trip = 10}, 0},
                               Case{{.unacknowledged = 60'000, .window = 10'000, .trip = 10}, 0.05},
                               Case{{.unacknowledged = 60'000, .window = 10'000, .trip = 0}, 0.005},
                               Case{{.unacknowledged = 60'000, .window = 0, .trip = 10}, 60},
                               Case{{.unacknowledged = 60'010, .window = 10, .trip = 1000}, 60}}) {
    const Backlog backlog = SystemSocketMonitor::backlogAt(expected.pace);
    EXPECT_EQ(backlog.bytes, expected.pace.unacknowledged);
    EXPECT_NEAR(backlog.time.count(), expected.seconds, 1e-9) << expected.pace.unacknowledged;
  }
}

}  // namespace
}  // namespace orvel
