#include "app/HelperDelegate.hpp"
#include "app/ServerHub.hpp"
#include "catalog/Workspace.hpp"
#include "fakes/FakePanelDesktop.hpp"
#include "fakes/SessionWorld.hpp"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <utility>

namespace orvel {
namespace {

/// Does something of the test's first when a port is asked for.
class WatchedNetwork final : public Network {
 public:
  explicit WatchedNetwork(FakeNetwork& network) : network_(network) {}

  std::unique_ptr<Listener> makeListener(const ListenerOptions& options) override {
    if (whenAsked) whenAsked();
    return network_.makeListener(options);
  }

  std::function<void()> whenAsked;

 private:
  FakeNetwork& network_;
};

struct HelperDelegateTest : testing::Test, SessionWorld {
  FakeNetwork network{clock};
  WatchedNetwork watchedNetwork{network};
  FakeExecutor mainThread{clock};
  RecordingAdvertiser advertiser;
  PermissionGate gate{desktop};
  SessionServices fresh = servicesUnder(gate);
  std::shared_ptr<ServerHub> hub = ServerHub::make({.advertiser = advertiser,
                                                    .clock = clock,
                                                    .mainThread = mainThread,
                                                    .network = watchedNetwork,
                                                    .services = fresh});
  FakeForeground foreground;
  HelperDelegate delegate{
      {.foreground = foreground, .hub = hub, .mainThread = mainThread, .permission = gate, .workspace = computer}};
};

TEST_F(HelperDelegateTest, LaunchingReadsThePermissionAndListens) {
  delegate.applicationDidFinishLaunching();
  EXPECT_TRUE(gate.cachedTrust()) << "at once, not with the first tick";
  clock.runDue();
  EXPECT_TRUE(hub->state().isRunning);
  EXPECT_TRUE(hub->state().accessibilityGranted);
}

TEST_F(HelperDelegateTest, LaunchingLeavesTheIconAsItsOnlyPlaceOnTheDesktop) {
  delegate.applicationDidFinishLaunching();
  EXPECT_EQ(foreground.becameAccessory, 1);
}

TEST_F(HelperDelegateTest, NothingIsDoneBeforeItsPlaceIsClear) {
  foreground.whenAccessory = [&] {
    EXPECT_FALSE(gate.cachedTrust());
    clock.runDue();
    EXPECT_FALSE(hub->state().isRunning);
  };
  delegate.applicationDidFinishLaunching();
  EXPECT_TRUE(gate.cachedTrust());
}

TEST_F(HelperDelegateTest, ThePermissionIsReadBeforeAPhoneCanConnect) {
  bool wasTrusted = false;
  watchedNetwork.whenAsked = [&] { wasTrusted = gate.cachedTrust(); };
  delegate.applicationDidFinishLaunching();
  EXPECT_TRUE(wasTrusted);
}

TEST_F(HelperDelegateTest, OtherProgramsAreWatchedOnlyOnceThePortIsAskedFor) {
  watchedNetwork.whenAsked = [&] { EXPECT_FALSE(computer.activationHandler); };
  delegate.applicationDidFinishLaunching();
  EXPECT_TRUE(computer.activationHandler);
}

TEST_F(HelperDelegateTest, AProgramThatComesToTheFrontHasThePermissionReadAgain) {
  desktop.trusted = false;
  delegate.applicationDidFinishLaunching();
  clock.advance(Seconds(0.1));
  desktop.trusted = true;
  computer.activationHandler();
  clock.runDue();
  EXPECT_TRUE(gate.cachedTrust()) << "without waiting for the next tick";
  EXPECT_TRUE(hub->state().accessibilityGranted);
}

TEST_F(HelperDelegateTest, TerminatingClosesThePhonesConnections) {
  delegate.applicationDidFinishLaunching();
  clock.runDue();
  const auto phone = network.connect();
  phone->open();
  delegate.applicationWillTerminate();
  clock.runDue();
  EXPECT_TRUE(phone->cancelled);
  EXPECT_FALSE(network.ports.back()->open);
}

}  // namespace
}  // namespace orvel
