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

struct ServerHubTest : testing::Test, SessionWorld {
  void start() {
    hub->start();
    clock.runDue();
  }

  std::shared_ptr<FakeWire> connect() {
    auto wire = network.connect();
    wire->open();
    clock.runDue();
    return wire;
  }

  std::shared_ptr<FakeWire> connectPaired(const std::string& device) {
    auto wire = connect();
    authenticate(*wire, device);
    return wire;
  }

  FakeNetwork network{clock};
  FakeExecutor mainThread{clock};
  RecordingAdvertiser advertiser;
  std::shared_ptr<ServerHub> hub = ServerHub::make(
      {.advertiser = advertiser, .clock = clock, .mainThread = mainThread, .network = network, .services = services});
};

TEST_F(ServerHubTest, IsIdleAtFirst) {
  EXPECT_EQ(hub->state(), HubState());
  EXPECT_EQ(hub->port(), 8787);
  EXPECT_THAT(network.ports, IsEmpty());
}

TEST_F(ServerHubTest, ListensWithTheAgreedOptions) {
  start();
  ASSERT_EQ(network.ports.size(), 1u);
  EXPECT_EQ(network.ports[0]->options.port, 8787);
  EXPECT_EQ(network.ports[0]->options.keepAliveIdle, Seconds(10));
  EXPECT_EQ(network.ports[0]->options.maximumMessageSize, 8'388'608u);
  EXPECT_TRUE(hub->state().isRunning);
}

TEST_F(ServerHubTest, AdvertisesWhileItListens) {
  EXPECT_FALSE(advertiser.service);
  start();
  ASSERT_TRUE(advertiser.service);
  EXPECT_EQ(advertiser.service->name, "Test Mac");
  EXPECT_EQ(advertiser.service->type, "_orvel._tcp");
  EXPECT_EQ(advertiser.service->port, 8787);
  hub->stop();
  clock.runDue();
  EXPECT_FALSE(advertiser.service);
}

TEST_F(ServerHubTest, ATakenPortIsSaidInTheUsersWords) {
  network.failure = std::make_error_code(std::errc::address_in_use);
  start();
  EXPECT_FALSE(hub->state().isRunning);
  EXPECT_EQ(hub->state().lastError, "Port 8787 is taken. Quit whatever is using it, then hit Restart.");
  EXPECT_FALSE(advertiser.service);
  clock.advance(Seconds(60));
  EXPECT_EQ(network.ports.size(), 1u) << "nothing is retried by itself";
}

TEST_F(ServerHubTest, RestartAfterATakenPortWorksAndClearsTheError) {
  network.failure = std::make_error_code(std::errc::address_in_use);
  start();
  network.failure.reset();
  start();
  EXPECT_TRUE(hub->state().isRunning);
  EXPECT_EQ(hub->state().lastError, std::nullopt);
  EXPECT_TRUE(connect()->received("hello").size() == 1);
}

TEST_F(ServerHubTest, AnyOtherErrorIsSaidAsTheSystemSaysIt) {
  network.failure = std::make_error_code(std::errc::permission_denied);
  start();
  EXPECT_EQ(hub->state().lastError, network.failure->message());
}

TEST_F(ServerHubTest, StoppingLeavesTheLastErrorAsItIs) {
  network.failure = std::make_error_code(std::errc::address_in_use);
  start();
  hub->stop();
  clock.runDue();
  EXPECT_TRUE(hub->state().lastError);
}

TEST_F(ServerHubTest, ObserversHearOfAChangeBeforeItTakesEffect) {
  std::vector<std::pair<bool, bool>> runs;
  hub->observe([&](const HubState& next) { runs.emplace_back(hub->state().isRunning, next.isRunning); });
  permission.refresh();
  start();
  EXPECT_THAT(runs, testing::Contains(std::pair(false, true)));
  EXPECT_THAT(runs, testing::Not(testing::Contains(std::pair(true, true))));
}

TEST_F(ServerHubTest, WhatDoesNotChangeIsNotAnnounced) {
  start();
  permission.refresh();
  clock.runDue();
  int announcements = 0;
  hub->observe([&](const HubState&) { ++announcements; });
  permission.refresh();
  hub->publishClients();
  clock.advance(Seconds(10));
  EXPECT_EQ(announcements, 0);
}

TEST_F(ServerHubTest, PhonesAreListedSortedWithDuplicatesAndStrangersAsIPhone) {
  start();
  const auto zoe = connectPaired("Zoe");
  const auto first = connectPaired("Adam");
  const auto second = connectPaired("Adam");
  const auto stranger = connect();
  hub->publishClients();
  clock.runDue();
  EXPECT_THAT(hub->state().clients, ElementsAre("Adam", "Adam", "Zoe", "iPhone"));
}

TEST_F(ServerHubTest, AConnectionAloneDoesNotRepublishTheList) {
  start();
  const auto stranger = connect();
  EXPECT_THAT(hub->state().clients, IsEmpty());
}

TEST_F(ServerHubTest, APhoneThatLeavesIsTakenOffTheList) {
  start();
  const auto phone = connectPaired("Zoe");
  const auto other = connectPaired("Adam");
  phone->drop();
  clock.runDue();
  EXPECT_THAT(hub->state().clients, ElementsAre("Adam"));
  EXPECT_TRUE(phone->closed) << "its session is freed";
}

TEST_F(ServerHubTest, AConnectionThatEndsBeforeItIsReadyLeavesNothing) {
  start();
  const auto wire = network.connect();
  wire->fail();
  clock.runDue();
  EXPECT_THAT(wire->sent, IsEmpty());
  EXPECT_TRUE(wire->closed);
}

TEST_F(ServerHubTest, RestartDropsThePhonesAndTakesThemAgain) {
  start();
  const auto first = connectPaired("Zoe");
  const auto second = connectPaired("Adam");
  start();
  EXPECT_TRUE(first->cancelled);
  EXPECT_TRUE(second->cancelled);
  EXPECT_THAT(hub->state().clients, IsEmpty());
  EXPECT_TRUE(hub->state().isRunning);
  EXPECT_FALSE(network.ports[0]->open);
  const auto again = connectPaired("Zoe");
  EXPECT_THAT(hub->state().clients, ElementsAre("Zoe"));
}

TEST_F(ServerHubTest, StopReleasesWhatAPhoneHolds) {
  start();
  const auto phone = connectPaired("Zoe");
  phone->binary({2, 0, 1});
  hub->stop();
  clock.runDue();
  EXPECT_EQ(desktop.all<MouseEvent>().back().type, MouseEventType::leftUp);
  EXPECT_FALSE(hub->state().isRunning);
  EXPECT_FALSE(network.ports[0]->open);
}

TEST_F(ServerHubTest, AConnectionThatArrivesAsTheHubStopsIsRefused) {
  start();
  const auto port = network.ports.back();
  hub->stop();
  const auto late = network.connectTo(*port);
  EXPECT_TRUE(late->closed);
  start();
  const auto later = network.connectTo(*port);
  EXPECT_TRUE(later->closed) << "also when the next listener is up";
}

TEST_F(ServerHubTest, TheLastWordsOfAStoppedListenerAreNotThoseOfTheNext) {
  start();
  const auto old = network.ports[0];
  start();
  old->handlers.stateChanged(Listener::State::failed, std::make_error_code(std::errc::io_error));
  old->handlers.stateChanged(Listener::State::cancelled, {});
  clock.runDue();
  EXPECT_TRUE(hub->state().isRunning);
  EXPECT_EQ(hub->state().lastError, std::nullopt);
}

TEST_F(ServerHubTest, DisconnectAllKeepsListening) {
  start();
  const auto phone = connectPaired("Zoe");
  hub->disconnectAll();
  clock.runDue();
  EXPECT_TRUE(phone->cancelled);
  EXPECT_TRUE(network.ports[0]->open);
  EXPECT_THAT(hub->state().clients, IsEmpty());
  EXPECT_TRUE(hub->state().isRunning);
}

TEST_F(ServerHubTest, AuthenticatedPhonesHearOfAPermissionChangeOnce) {
  start();
  clock.advance(Seconds(1.5));
  const auto phone = connectPaired("Zoe");
  const auto stranger = connect();
  desktop.trusted = false;
  clock.advance(Seconds(1.5));
  ASSERT_EQ(phone->received("permission").size(), 1u);
  EXPECT_FALSE(phone->received("permission").at(0).at("accessibility").as_bool());
  EXPECT_FALSE(hub->state().accessibilityGranted);
  clock.advance(Seconds(6));
  EXPECT_EQ(phone->received("permission").size(), 1u);
  desktop.trusted = true;
  clock.advance(Seconds(1.5));
  EXPECT_TRUE(phone->received("permission").at(1).at("accessibility").as_bool());
  EXPECT_TRUE(hub->state().accessibilityGranted);
  EXPECT_THAT(stranger->received("permission"), IsEmpty());
}

TEST_F(ServerHubTest, PhonesHearOfAChangeWhoeverFindsItAndAtOnce) {
  start();
  clock.advance(Seconds(1.5));
  const auto phone = connectPaired("Zoe");
  desktop.trusted = false;
  permission.refresh();
  clock.runDue();
  EXPECT_FALSE(hub->state().accessibilityGranted);
  ASSERT_EQ(phone->received("permission").size(), 1u);
  EXPECT_FALSE(phone->received("permission").at(0).at("accessibility").as_bool());
  clock.advance(Seconds(3));
  EXPECT_EQ(phone->received("permission").size(), 1u);
}

TEST_F(ServerHubTest, APhoneThatProvesItselfWithoutANameIsListedAsAnIPhone) {
  start();
  const auto wire = connect();
  wire->text(R"({"t":"auth","proof":")" + proofFor(*wire) + R"("})");
  clock.runDue();
  EXPECT_THAT(hub->state().clients, ElementsAre("iPhone"));
}

TEST_F(ServerHubTest, APhoneThatProvesItselfAgainWithoutANameIsAnIPhoneAgain) {
  start();
  const auto wire = connectPaired("Zoe");
  wire->text(R"({"t":"auth","proof":")" + proofFor(*wire) + R"("})");
  clock.runDue();
  EXPECT_THAT(hub->state().clients, ElementsAre("iPhone"));
}

TEST_F(ServerHubTest, AnObserverSeesTheOldStateOfEachPropertyAndIsGivenTheNew) {
  std::vector<std::pair<HubState, HubState>> changes;
  hub->observe([&](const HubState& next) { changes.emplace_back(hub->state(), next); });
  start();
  permission.refresh();
  connectPaired("Zoe");
  hub->setMirroring(true);
  clock.runDue();
  HubState expected;
  for (const auto& [seen, announced] : changes) {
    EXPECT_EQ(seen, expected);
    expected = announced;
  }
  EXPECT_EQ(hub->state(), expected);
  EXPECT_EQ(changes.size(), 4u);
}

TEST_F(ServerHubTest, TheFirstTickComesAfterOneAndAHalfSecondsAndCountsAsAChange) {
  start();
  const auto early = connectPaired("Zoe");
  clock.advance(Seconds(1.49));
  EXPECT_THAT(early->received("permission"), IsEmpty());
  clock.advance(Seconds(0.02));
  EXPECT_EQ(early->received("permission").size(), 1u);
  const auto late = connectPaired("Adam");
  clock.advance(Seconds(3));
  EXPECT_EQ(early->received("permission").size(), 1u);
  EXPECT_THAT(late->received("permission"), IsEmpty());
}

TEST_F(ServerHubTest, ThePermissionIsReadEveryOneAndAHalfSeconds) {
  clock.advance(Seconds(1.5));
  desktop.trusted = false;
  clock.advance(Seconds(1.49));
  EXPECT_TRUE(permission.cachedTrust());
  clock.advance(Seconds(0.02));
  EXPECT_FALSE(permission.cachedTrust());
}

TEST_F(ServerHubTest, AListenerThatFailsLaterIsNotRunningAnyMore) {
  start();
  network.ports[0]->handlers.stateChanged(Listener::State::failed, std::make_error_code(std::errc::io_error));
  clock.runDue();
  EXPECT_FALSE(hub->state().isRunning);
  EXPECT_TRUE(hub->state().lastError);
}

TEST_F(ServerHubTest, StoppingEmptiesTheListAtOnce) {
  start();
  const auto phone = connectPaired("Zoe");
  std::vector<std::size_t> lengths;
  hub->observe([&](const HubState& next) { lengths.push_back(next.clients.size()); });
  hub->stop();
  clock.runDue();
  EXPECT_THAT(lengths, ElementsAre(0u)) << "one change, together with the end of running";
}

TEST_F(ServerHubTest, ThePairingPayloadHoldsWhatAPhoneNeeds) {
  const auto payload = boost::json::parse(hub->pairingPayload()).as_object();
  EXPECT_EQ(payload.at("v").as_int64(), 1);
  EXPECT_EQ(payload.at("host"), "10.0.0.2");
  EXPECT_EQ(payload.at("port").to_number<int>(), 8787);
  EXPECT_EQ(std::string(payload.at("token").as_string()), pairing.token());
  EXPECT_EQ(payload.at("name"), "Test Mac");
  EXPECT_EQ(payload.size(), 5u);
}

TEST_F(ServerHubTest, WithoutANetworkThePairingPayloadHasAnEmptyHost) {
  machine.addresses.clear();
  EXPECT_EQ(boost::json::parse(hub->pairingPayload()).at("host"), "");
}

TEST_F(ServerHubTest, AHubThatIsGoneIsNotCalled) {
  start();
  const auto phone = connectPaired("Zoe");
  const auto port = network.ports.back();
  hub.reset();
  phone->drop();
  permission.refresh();
  port->handlers.stateChanged(Listener::State::ready, {});
  clock.advance(Seconds(10));
  EXPECT_EQ(clock.pendingTasks(), 0u);
}

/// A phone that has sent more text than can be typed at once, and left.
struct LingeringPhoneTest : ServerHubTest {
  void visit() {
    const auto wire = wires.emplace_back(connectPaired("Zoe"));
    std::vector<std::uint8_t> text(65'538, 'x');
    text[0] = 5;
    text[1] = text[2] = 0xff;
    for (int count = 0; count < 10; ++count) wire->binary(text);
    wire->drop();
  }

  std::size_t typed() const {
    std::size_t size = 0;
    for (const TextEvent& event : desktop.all<TextEvent>()) size += event.text.size();
    return size;
  }

  std::vector<std::shared_ptr<FakeWire>> wires;  // whose queues outlive the sessions
};

TEST_F(LingeringPhoneTest, IsNoClientAnyMoreWhileItsTextIsTyped) {
  start();
  visit();
  std::vector<std::size_t> typedBefore;
  hub->observe([&](const HubState& next) {
    if (!hub->state().clients.empty() && next.clients.empty()) typedBefore.push_back(typed());
  });
  clock.advance(Seconds(3600));
  EXPECT_THAT(hub->state().clients, IsEmpty());
  EXPECT_THAT(typedBefore, ElementsAre(testing::Lt(655'350u)));
  EXPECT_EQ(typed(), 655'350u);
}

TEST_F(LingeringPhoneTest, IsPartedFromLikeTheOthers) {
  start();
  visit();
  hub->disconnectAll();
  clock.advance(Seconds(3600));
  EXPECT_LT(typed(), 655'350u);
  visit();
  hub->stop();
  clock.advance(Seconds(3600));
  EXPECT_LT(typed(), 655'350u);
}

TEST_F(LingeringPhoneTest, MustNotBeOneOfTooMany) {
  start();
  for (int count = 0; count < 20; ++count) visit();
  clock.advance(Seconds(36'000));
  EXPECT_GE(typed(), 8 * 655'350u);
  EXPECT_LT(typed(), 16 * 655'350u);
}

TEST_F(ServerHubTest, SaysWhetherAPhoneSeesTheScreen) {
  start();
  const auto first = connectPaired("First");
  const auto second = connectPaired("Second");
  first->text(R"({"t":"mirrorStart"})");
  EXPECT_FALSE(hub->state().mirroring);
  clock.runDue();
  EXPECT_TRUE(hub->state().mirroring);
  second->text(R"({"t":"mirrorStart"})");
  clock.runDue();
  EXPECT_TRUE(hub->state().mirroring);
  first->text(R"({"t":"mirrorStop"})");
  clock.runDue();
  EXPECT_FALSE(hub->state().mirroring) << "although the second had it";
}

TEST_F(ServerHubTest, APhoneThatLeavesIsNotSharedWithAnyMore) {
  start();
  const auto wire = connectPaired("Phone");
  wire->text(R"({"t":"mirrorStart"})");
  clock.runDue();
  wire->drop();
  clock.runDue();
  EXPECT_FALSE(hub->state().mirroring);
}

TEST_F(ServerHubTest, StopEndsTheSharing) {
  start();
  const auto wire = connectPaired("Phone");
  wire->text(R"({"t":"mirrorStart"})");
  clock.runDue();
  hub->stop();
  clock.runDue();
  EXPECT_FALSE(hub->state().mirroring);
  EXPECT_EQ(screen.running, 0);
}

TEST_F(ServerHubTest, ObserversHearOfTheSharingOnlyWhenItChanges) {
  std::vector<bool> heard;
  hub->observe([&](const HubState& next) { heard.push_back(next.mirroring); });
  for (const bool on : {false, true, true, false, false}) hub->setMirroring(on);
  EXPECT_THAT(heard, IsEmpty()) << "on the main thread";
  clock.runDue();
  EXPECT_THAT(heard, ElementsAre(true, false));
}

}  // namespace
}  // namespace orvel
