#include "app/ServerHub.hpp"
#include "base/SystemClock.hpp"
#include "base/WorkerThreads.hpp"
#include "fakes/FakeMachine.hpp"
#include "fakes/RecordingDesktop.hpp"
#include "input/PermissionGate.hpp"
#include "input/PointerDriver.hpp"
#include "session/ClientSession.hpp"
#include "session/NetworkThread.hpp"
#include "session/PairingStore.hpp"
#include "session/RawWebSocket.hpp"
#include "session/SocketTuner.hpp"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/ip/v6_only.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

struct NoTuner final : SocketTuner {
  bool enableKeepAlive(int, Seconds) override { return true; }
  Delivery delivery(int, Seconds) override { return Delivery::done; }
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
                             .services = services},
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
  std::unique_ptr<Executor> mainThread = workers.makeSerialQueue("main");
  std::unique_ptr<Executor> pointerQueue = workers.makeSerialQueue("pointer");
  RecordingDesktop desktop;
  FakeMachine machine;
  MemoryPreferences preferences;
  RecordingAdvertiser advertiser;
  PairingStore pairing{preferences};
  PermissionGate permission{desktop};
  PointerDriver pointer{desktop, desktop, clock, *pointerQueue};
  SessionServices services{.events = desktop,
                           .machine = machine,
                           .pairing = pairing,
                           .permission = permission,
                           .pointer = pointer,
                           .queues = workers,
                           .trust = desktop};
  NoTuner tuner;
  NetworkThread network{tuner};
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

TEST_F(ServerHubLoopbackTest, RestartDropsThePhonesAndTakesThemAgain) {
  std::uint16_t port = 0;
  {
    OtherListener finder(tcp::v4(), "0.0.0.0");
    port = finder.port();
  }
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
