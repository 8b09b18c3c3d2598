#include "app/PanelService.hpp"
#include "app/ServerHub.hpp"
#include "fakes/SessionWorld.hpp"

#include <boost/json/parse.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace orvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct PanelServiceTest : testing::Test, SessionWorld {
  PanelServiceTest() {
    hub->start();
    clock.runDue();
    service.observe([this] { ++changes; });
  }

  std::shared_ptr<FakeWire> connectPaired(const std::string& device) {
    auto wire = network.connect();
    wire->open();
    clock.runDue();
    authenticate(*wire, device);
    return wire;
  }

  FakeNetwork network{clock};
  FakeExecutor mainThread{clock};
  FakeExecutor slowQueue{clock};
  RecordingAdvertiser advertiser;
  std::shared_ptr<ServerHub> hub = ServerHub::make(
      {.advertiser = advertiser, .clock = clock, .mainThread = mainThread, .network = network, .services = services});
  int quits = 0;
  int changes = 0;
  PanelService service{{.hub = hub,
                        .machine = machine,
                        .mainThread = mainThread,
                        .pairing = pairing,
                        .permission = permission,
                        .slowQueue = slowQueue,
                        .trust = desktop,
                        .quit = [this] { ++quits; }}};
};

TEST_F(PanelServiceTest, ShowsTheStateOfTheHub) {
  connectPaired("Anna's iPhone");
  hub->setMirroring(true);
  permission.refresh();
  clock.runDue();
  const PanelState state = service.state();
  EXPECT_TRUE(state.isRunning);
  EXPECT_TRUE(state.accessibilityGranted);
  EXPECT_THAT(state.clients, ElementsAre("Anna's iPhone"));
  EXPECT_FALSE(state.lastError);
  EXPECT_TRUE(state.mirroring);
  EXPECT_EQ(state.port, 8787);
  EXPECT_EQ(state.address, "10.0.0.2");
  EXPECT_EQ(state.permission, desktop.notice());
}

TEST_F(PanelServiceTest, ShowsTheLastErrorAndTheLackOfANetwork) {
  network.failure = std::make_error_code(std::errc::address_in_use);
  machine.addresses.clear();
  service.restart();
  clock.runDue();
  EXPECT_FALSE(service.state().isRunning);
  EXPECT_EQ(service.state().lastError, "Port 8787 is taken. Quit whatever is using it, then hit Restart.");
  EXPECT_FALSE(service.state().address);
  EXPECT_EQ(boost::json::parse(service.invitation().payload).at("host"), "");
}

TEST_F(PanelServiceTest, InvitesWithTheHubsPayloadAndTheCodeForTheEye) {
  EXPECT_EQ(service.invitation().payload, hub->pairingPayload());
  EXPECT_EQ(service.invitation().displayCode, pairing.displayToken());
}

TEST_F(PanelServiceTest, ANewCodeDisconnectsEveryPhoneAndChangesTheInvitation) {
  const auto first = connectPaired("Anna's iPhone");
  const auto second = connectPaired("Ben's iPhone");
  const PairingInvitation before = service.invitation();
  service.renewCode();
  EXPECT_EQ(changes, 0);
  clock.runDue();
  EXPECT_EQ(changes, 1);
  EXPECT_TRUE(first->cancelled);
  EXPECT_TRUE(second->cancelled);
  EXPECT_THAT(service.state().clients, IsEmpty());
  EXPECT_NE(service.invitation().payload, before.payload);
  EXPECT_NE(service.invitation().displayCode, before.displayCode);
  EXPECT_TRUE(service.state().isRunning);
}

/// Otherwise a phone could come back by the old code in between.
TEST_F(PanelServiceTest, PhonesAreDisconnectedOnlyOnceTheNewCodeHolds) {
  const auto phone = connectPaired("Anna's iPhone");
  std::vector<bool> wasConnected;
  preferences.beforeWriting = [&] { wasConnected.push_back(!phone->cancelled); };
  service.renewCode();
  clock.runDue();
  EXPECT_THAT(wasConnected, ElementsAre(true));
  EXPECT_TRUE(phone->cancelled);
}

TEST_F(PanelServiceTest, WhileACodeIsMadeTheOldOneIsNotReadAndNoSecondOneIsMade) {
  const std::string old = pairing.displayToken();
  service.renewCode();
  service.renewCode();
  // Whoever reads the store now might have to wait for it.
  pairing.rotateToken();
  EXPECT_EQ(service.invitation().displayCode, old);
  clock.runDue();
  EXPECT_EQ(changes, 1);
  EXPECT_EQ(service.invitation().displayCode, pairing.displayToken());
}

TEST_F(PanelServiceTest, RestartDisconnectsAndListensAnew) {
  const auto phone = connectPaired("Anna's iPhone");
  service.restart();
  clock.runDue();
  EXPECT_TRUE(phone->cancelled);
  EXPECT_THAT(service.state().clients, IsEmpty());
  EXPECT_TRUE(service.state().isRunning);
  EXPECT_EQ(network.ports.size(), 2U);
}

TEST_F(PanelServiceTest, ThePermissionIsReadAnewAndAskedFor) {
  desktop.trusted = false;
  service.refreshPermission();
  clock.runDue();
  EXPECT_FALSE(service.state().accessibilityGranted);
  service.requestPermission();
  EXPECT_EQ(desktop.prompts, 1);
  EXPECT_EQ(desktop.settingsOpened, 1);
}

TEST_F(PanelServiceTest, QuitEndsTheProgram) {
  service.quit();
  EXPECT_EQ(quits, 1);
}

}  // namespace
}  // namespace orvel
