#include "MacTest.hpp"
#include "frameworks/Sockets.hpp"
#include "platform/macos/SystemSocketTuner.hpp"

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

class SocketTunerTest : public MacTest {
 protected:
  void SetUp() override {
    MacTest::SetUp();
    fake::sockets() = {};
  }

  static std::map<fake::Sockets::Option, int> options() { return fake::sockets().options[socketNumber]; }
  static tcp_connection_info& connection() { return fake::sockets().connections[socketNumber]; }

  SystemSocketTuner tuner_;
};

TEST_F(SocketTunerTest, AVanishedPeerFailsWithinThirtySeconds) {
  ASSERT_TRUE(tuner_.enableKeepAlive(socketNumber, Seconds(10)));
  EXPECT_EQ(options(), (std::map<fake::Sockets::Option, int>{
                           {keepAlive, 1}, {idleTime, 10}, {probeInterval, 4}, {probeCount, 4}}));
}

TEST_F(SocketTunerTest, PartsOfASecondCountAsAWholeOne) {
  ASSERT_TRUE(tuner_.enableKeepAlive(socketNumber, Seconds(0.2)));
  EXPECT_EQ(options()[idleTime], 1);
  ASSERT_TRUE(tuner_.enableKeepAlive(socketNumber, Seconds(1.2)));
  EXPECT_EQ(options()[idleTime], 2);
}

TEST_F(SocketTunerTest, AnEndlessIdleTimeIsALongOne) {
  ASSERT_TRUE(tuner_.enableKeepAlive(socketNumber, Seconds(endless)));
  EXPECT_EQ(options()[idleTime], 32767);
}

TEST_F(SocketTunerTest, SenselessIdleTimesAreRefused) {
  for (const double idle : {0.0, -1.0, noNumber}) {
    EXPECT_FALSE(tuner_.enableKeepAlive(socketNumber, Seconds(idle))) << idle;
  }
  EXPECT_TRUE(options().empty());
}

TEST_F(SocketTunerTest, WhatTheKernelRefusesIsReported) {
  for (const auto& option : {keepAlive, idleTime, probeInterval, probeCount}) {
    fake::sockets().refused = {option};
    EXPECT_FALSE(tuner_.enableKeepAlive(socketNumber, Seconds(10))) << option.second;
  }
}

TEST_F(SocketTunerTest, WhatWasTakenIsDone) {
  connection().tcpi_snd_sbbytes = 0;
  EXPECT_EQ(tuner_.delivery(socketNumber, Seconds(14)), Delivery::done);
  EXPECT_TRUE(options().empty());
}

TEST_F(SocketTunerTest, WhatWasNotTakenIsPendingUntilTheKernelGivesUp) {
  connection().tcpi_snd_sbbytes = 1;
  EXPECT_EQ(tuner_.delivery(socketNumber, Seconds(14)), Delivery::pending);
  EXPECT_EQ(options(), (std::map<fake::Sockets::Option, int>{{repeatTime, 14}}));
}

TEST_F(SocketTunerTest, APeerThatHasEndedItsSideHasHungUp) {
  constexpr int established = 4;
  connection().tcpi_state = established;
  EXPECT_FALSE(tuner_.hasHungUp(socketNumber));
  for (const int state : {0, 5, 9}) {
    connection().tcpi_state = static_cast<std::uint8_t>(state);
    EXPECT_TRUE(tuner_.hasHungUp(socketNumber)) << state;
  }
}

TEST_F(SocketTunerTest, ATimeoutOfNothingIsNotEndless) {
  connection().tcpi_snd_sbbytes = 1;
  EXPECT_EQ(tuner_.delivery(socketNumber, Seconds(0)), Delivery::pending);
  EXPECT_EQ(options()[repeatTime], 1);
}

TEST_F(SocketTunerTest, ASocketThatIsNoneHasNothingToDeliver) {
  EXPECT_EQ(tuner_.delivery(-1, Seconds(14)), Delivery::done);
  EXPECT_EQ(tuner_.backlog(-1).bytes, 0u);
  EXPECT_EQ(tuner_.backlog(-1).time, Seconds(0));
}

TEST_F(SocketTunerTest, ABacklogIsWhatTheKernelReports) {
  connection().tcpi_snd_sbbytes = 90'000;
  connection().tcpi_snd_cwnd = 30'000;
  connection().tcpi_snd_wnd = 60'000;
  connection().tcpi_srtt = 50;
  EXPECT_EQ(tuner_.backlog(socketNumber).bytes, 90'000u);
  EXPECT_NEAR(tuner_.backlog(socketNumber).time.count(), 0.1, 1e-9);
  connection().tcpi_snd_cwnd = 200'000;
  EXPECT_NEAR(tuner_.backlog(socketNumber).time.count(), 0.025, 1e-9) << "the peer has no more room than this";
}

TEST_F(SocketTunerTest, ABacklogLeavesAtThePaceOfTheConnectionLessWhatIsOnItsWay) {
  struct Case {
    SystemSocketTuner::Pace pace;
    double seconds;
  };
  for (const Case& expected : {Case{{.unacknowledged = 0, .window = 10'000, .trip = 10}, 0},
                               Case{{.unacknowledged = 10'000, .window = 10'000, .trip = 10}, 0},
                               Case{{.unacknowledged = 60'000, .window = 10'000, .trip = 10}, 0.05},
                               Case{{.unacknowledged = 60'000, .window = 10'000, .trip = 0}, 0.005},
                               Case{{.unacknowledged = 60'000, .window = 0, .trip = 10}, 60},
                               Case{{.unacknowledged = 60'010, .window = 10, .trip = 1000}, 60}}) {
    const Backlog backlog = SystemSocketTuner::backlogAt(expected.pace);
    EXPECT_EQ(backlog.bytes, expected.pace.unacknowledged);
    EXPECT_NEAR(backlog.time.count(), expected.seconds, 1e-9) << expected.pace.unacknowledged;
  }
}

}  // namespace
}  // namespace orvel
