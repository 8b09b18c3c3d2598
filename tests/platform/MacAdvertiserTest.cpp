#include "platform/BonjourTest.hpp"
#include "platform/macos/SystemAdvertiser.hpp"

#include <chrono>
#include <cstdlib>
#include <optional>
#include <string>
#include <utility>

namespace orvel {
namespace {

/// The leaf for macOS with the daemon at hand.
class MacAdvertiserTest : public BonjourTest {
 protected:
  static void SetUpTestSuite() {
    BonjourTest::SetUpTestSuite();
    setenv("AVAHI_COMPAT_NOWARN", "1", 1);
  }

  void TearDown() override {
    advertiser_.reset();
    BonjourTest::TearDown();
  }

  void advertise() { advertiser_->advertise("Desk", "_orvel._tcp", 8787); }

  std::optional<SystemAdvertiser> advertiser_{std::in_place};
};

TEST_F(MacAdvertiserTest, TheServiceIsFoundByNameAndPort) {
  startAll();
  advertiser_->advertise("Ada's Küche", "_orvel._tcp", 8787);
  expectOffered({{"Ada's Küche", "8787"}});
}

TEST_F(MacAdvertiserTest, WithdrawingTakesItBack) {
  startAll();
  advertise();
  expectOffered({{"Desk", "8787"}});
  advertiser_->withdraw();
  expectOffered({});
  advertise();
  expectOffered({{"Desk", "8787"}});
}

TEST_F(MacAdvertiserTest, AdvertisingAgainReplaces) {
  startAll();
  advertise();
  expectOffered({{"Desk", "8787"}});
  advertiser_->advertise("Kitchen", "_orvel._tcp", 8788);
  expectOffered({{"Kitchen", "8788"}});
}

TEST_F(MacAdvertiserTest, TheEndTakesItBack) {
  startAll();
  advertise();
  expectOffered({{"Desk", "8787"}});
  advertiser_.reset();
  expectOffered({});
}

TEST_F(MacAdvertiserTest, TheServiceIsRegisteredOnceTheDaemonStarts) {
  startBus();
  advertise();
  startDaemon();
  expectOffered({{"Desk", "8787"}});
}

TEST_F(MacAdvertiserTest, TheServiceIsRegisteredAgainAfterARestartOfTheDaemon) {
  startAll();
  advertise();
  expectOffered({{"Desk", "8787"}});
  stopDaemon();
  startDaemon();
  expectOffered({{"Desk", "8787"}});
}

TEST_F(MacAdvertiserTest, ALongNameIsCutBetweenCharacters) {
  startAll();
  std::string name = "x";
  std::string expected = "x";
  for (int count = 0; count < 30; ++count) name += "日";
  for (int count = 0; count < 20; ++count) expected += "日";
  advertiser_->advertise(name, "_orvel._tcp", 8787);
  expectOffered({{expected, "8787"}});
}

TEST_F(MacAdvertiserTest, WhatCannotBeAnnouncedDoesNoHarm) {
  startAll();
  const std::pair<const char*, const char*> services[] = {{"Desk", "no type"}, {"Desk\xff", "_orvel._tcp"}};
  for (const auto& [name, type] : services) {
    advertise();
    expectOffered({{"Desk", "8787"}});
    advertiser_->advertise(name, type, 8787);
    // Only then has the advertiser seen it: a later call would replace it before that.
    expectOffered({});
  }
  advertise();
  expectOffered({{"Desk", "8787"}});
}

}  // namespace
}  // namespace orvel
