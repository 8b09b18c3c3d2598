#include "app/ServerHub.hpp"
#include "base/Clock.hpp"
#include "base/Guarded.hpp"
#include "base/WorkerThreads.hpp"
#include "fakes/RecordingDesktop.hpp"
#include "fakes/Rules.hpp"
#include "session/NetworkThread.hpp"
#include "session/RawWebSocket.hpp"
#include "session/SocketMonitor.hpp"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ip/v6_only.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <future>
#include <memory>
#include <string>

namespace orvel {
namespace {

using boost::asio::ip::tcp;

/// Another program that listens on a port of its own choice.
class OtherListener {
 public:
  explicit OtherListener(const tcp& protocol, const char* address) {
    acceptor_.open(protocol);
    acceptor_.set_option(tcp::acceptor::reuse_address(true));
    if (protocol == tcp::v6()) acceptor_.set_option(boost::asio::ip::v6_only(true));
    acceptor_.bind(tcp::endpoint(boost::asio::ip::make_address(address), 0));
    acceptor_.listen();
  }

  std::uint16_t port() const { return acceptor_.local_endpoint().port(); }
  void quit() { acceptor_.close(); }

 private:
  boost::asio::io_context context_;
  tcp::acceptor acceptor_{context_};
};

/// Notes what the listener asks for and has asked for before.
struct RecordingMonitor final : SocketMonitor {
  bool enableKeepAlive(int socket, Seconds idle) override {
    int noDelay = 0;
    socklen_t size = sizeof noDelay;
    getsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &noDelay, &size);
    seen.withLock([&](Seen& all) { all = {idle, noDelay != 0}; });
    return true;
  }
  Delivery delivery(int, Seconds) override { return Delivery::done; }
  bool hasHungUp(int) override { return false; }
  Backlog backlog(int) override { return {}; }

  struct Seen {
    Seconds keepAliveIdle{0};
    bool noDelay = false;
  };
  Guarded<Seen> seen;
};

/// A hub on the real network thread; a serial queue is its main thread.
struct ServerHubLoopbackTest : testing::Test {
  template <class Step>
  auto onMainThread(Step step) {
    std::packaged_task<decltype(step())()> task(step);
    auto result = task.get_future();
    mainThread->post([&task] { task(); });
    return result.get();
  }

  ~ServerHubLoopbackTest() override {
    if (hub) onMainThread([&] { hub->stop(); });
    network.finish();
    workers.finish();
  }

  void make(std::uint16_t port) {
    onMainThread([&] {
      hub = ServerHub::make({.advertiser = advertiser,
                             .clock = clock,
                             .mainThread = *mainThread,
                             .network = network,
                             .services = rules.services},
                            port);
    });
  }

  /// The state that the hub announces next and that pleases `isAsExpected`.
  template <class Check>
  HubState startAndWaitFor(Check isAsExpected) {
    auto reached = std::make_shared<std::promise<HubState>>();
    auto state = reached->get_future();
    onMainThread([&] {
      hub->observe([reached, isAsExpected](const HubState& next) mutable {
        if (reached && isAsExpected(next)) std::exchange(reached, nullptr)->set_value(next);
      });
      hub->start();
    });
    if (state.wait_for(std::chrono::seconds(10)) != std::future_status::ready) {
      ADD_FAILURE() << "the hub never came to the expected state";
      return {};
    }
    return state.get();
  }

  SystemClock clock;
  WorkerThreads workers;
  std::unique_ptr<Executor> mainThread = workers.makeSerialQueue();
  RecordingDesktop desktop;
  RecordingAdvertiser advertiser;
  Rules rules{desktop, clock, workers};
  RecordingMonitor monitor;
  NetworkThread network{monitor};
  std::shared_ptr<ServerHub> hub;
};

struct TakenPortTest : ServerHubLoopbackTest, testing::WithParamInterface<const char*> {};

TEST_P(TakenPortTest, IsNotSharedAndIsTakenOverOnRestart) {
  const std::string address = GetParam();
  OtherListener other(address.find(':') == std::string::npos ? tcp::v4() : tcp::v6(), address.c_str());
  make(other.port());
  const auto refused = startAndWaitFor([](const HubState& next) { return next.lastError.has_value(); });
  EXPECT_EQ(refused.lastError, "Port 8787 is taken. Quit whatever is using it, then hit Restart.");
  EXPECT_FALSE(refused.isRunning);

  other.quit();
  const auto running = startAndWaitFor([](const HubState& next) { return next.isRunning; });
  EXPECT_EQ(running.lastError, std::nullopt);
  RawWebSocket phone(hub->port());
  EXPECT_TRUE(phone.open());
}

INSTANTIATE_TEST_SUITE_P(By, TakenPortTest, testing::Values("0.0.0.0", "127.0.0.1", "::", "::1"));

std::uint16_t freePort() {
  const OtherListener finder(tcp::v4(), "0.0.0.0");
  const std::uint16_t port = finder.port();
  return port;
}

TEST_F(ServerHubLoopbackTest, ConnectionsAreProbedAndSendAtOnce) {
  make(freePort());
  startAndWaitFor([](const HubState& next) { return next.isRunning; });
  RawWebSocket phone(hub->port());
  ASSERT_TRUE(phone.open());
  const auto seen = monitor.seen.withLock([](const RecordingMonitor::Seen& all) { return all; });
  EXPECT_EQ(seen.keepAliveIdle, Seconds(10));
  EXPECT_TRUE(seen.noDelay);
}

TEST_F(ServerHubLoopbackTest, PhonesThatCannotBeTakenAreTakenLater) {
  make(freePort());
  startAndWaitFor([](const HubState& next) { return next.isRunning; });
  // The socket is made while there is a descriptor for it, and connected when there is none for the other end.
  const int phone = socket(AF_INET, SOCK_STREAM, 0);
  ASSERT_GE(phone, 0);
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &before), 0);
  const rlimit none{.rlim_cur = 3, .rlim_max = before.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none), 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(hub->port());
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  EXPECT_EQ(connect(phone, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  clock.sleep(Seconds(0.3));
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
  close(phone);
  RawWebSocket next(hub->port());
  EXPECT_TRUE(next.open());
}

TEST_F(ServerHubLoopbackTest, RestartDropsThePhonesAndTakesThemAgain) {
  const std::uint16_t port = freePort();
  make(port);
  startAndWaitFor([](const HubState& next) { return next.isRunning; });
  RawWebSocket first(port);
  RawWebSocket second(port);
  ASSERT_TRUE(first.open());
  ASSERT_TRUE(second.open());
  ASSERT_TRUE(first.readFrame());
  startAndWaitFor([](const HubState& next) { return next.isRunning; });
  EXPECT_TRUE(first.waitForEnd());
  EXPECT_TRUE(second.waitForEnd());
  RawWebSocket again(port);
  EXPECT_TRUE(again.open());
  EXPECT_TRUE(again.readFrame()) << "greeted";
}

}  // namespace
}  // namespace orvel
