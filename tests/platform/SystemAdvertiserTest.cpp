#include "platform/BonjourTest.hpp"
#include "platform/linux/SystemAdvertiser.hpp"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <thread>

namespace orvel {
namespace {

namespace fs = std::filesystem;

class SystemAdvertiserTest : public BonjourTest {
 protected:
  /// How often the advertiser's thread has been woken so far.
  static std::optional<long> wakeUps() {
    for (const auto& task : fs::directory_iterator("/proc/self/task")) {
      std::string name;
      std::getline(std::ifstream(task.path() / "comm") >> std::ws, name);
      if (name != "orvel.mdns") continue;
      std::ifstream status(task.path() / "status");
      for (std::string word; status >> word;) {
        long count = 0;
        if (word == "voluntary_ctxt_switches:" && status >> count) return count;
      }
    }
    return std::nullopt;
  }

  static void expectSleep() {
    std::this_thread::sleep_for(Milliseconds(500));  // what it still had to do
    const auto before = wakeUps();
    std::this_thread::sleep_for(Milliseconds(1500));
    ASSERT_TRUE(before.has_value());
    EXPECT_EQ(wakeUps(), before);
  }

  static void expectQuickEnd(std::optional<SystemAdvertiser>& advertiser) {
    const auto start = std::chrono::steady_clock::now();
    advertiser.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - start, Milliseconds(2000));
  }
};

TEST_F(SystemAdvertiserTest, TheServiceIsFoundByNameAndPort) {
  startAll();
  SystemAdvertiser advertiser;
  advertiser.advertise("Ada's Küche", "_orvel._tcp", 8787);
  expectOffered({{"Ada's Küche", "8787"}});
  expectSleep();
}

TEST_F(SystemAdvertiserTest, WithdrawingTakesItBack) {
  startAll();
  SystemAdvertiser advertiser;
  advertiser.advertise("Desk", "_orvel._tcp", 8787);
  expectOffered({{"Desk", "8787"}});
  advertiser.withdraw();
  expectOffered({});
  expectSleep();
  advertiser.advertise("Desk", "_orvel._tcp", 8787);
  expectOffered({{"Desk", "8787"}});
}

TEST_F(SystemAdvertiserTest, AdvertisingAgainReplaces) {
  startAll();
  SystemAdvertiser advertiser;
  advertiser.advertise("Desk", "_orvel._tcp", 8787);
  expectOffered({{"Desk", "8787"}});
  advertiser.advertise("Kitchen", "_orvel._tcp", 8788);
  expectOffered({{"Kitchen", "8788"}});
}

TEST_F(SystemAdvertiserTest, TheEndTakesItBack) {
  startAll();
  std::optional<SystemAdvertiser> advertiser(std::in_place);
  advertiser->advertise("Desk", "_orvel._tcp", 8787);
  expectOffered({{"Desk", "8787"}});
  expectQuickEnd(advertiser);
  expectOffered({});
}

TEST_F(SystemAdvertiserTest, ADaemonThatStartsLateGetsTheAnnouncement) {
  startBus();
  SystemAdvertiser advertiser;
  advertiser.advertise("Desk", "_orvel._tcp", 8787);
  expectSleep();
  startDaemon();
  expectOffered({{"Desk", "8787"}});
}

TEST_F(SystemAdvertiserTest, ABusThatStartsLateIsUsedThen) {
  SystemAdvertiser advertiser;
  advertiser.advertise("Desk", "_orvel._tcp", 8787);
  expectSleep();
  startAll();
  expectOffered({{"Desk", "8787"}});
}

TEST_F(SystemAdvertiserTest, ARestartedDaemonGetsTheAnnouncementAgain) {
  startAll();
  SystemAdvertiser advertiser;
  advertiser.advertise("Desk", "_orvel._tcp", 8787);
  expectOffered({{"Desk", "8787"}});
  stopDaemon();
  expectSleep();
  startDaemon();
  expectOffered({{"Desk", "8787"}});
}

TEST_F(SystemAdvertiserTest, ARestartedBusIsUsedAgain) {
  startAll();
  SystemAdvertiser advertiser;
  advertiser.advertise("Desk", "_orvel._tcp", 8787);
  expectOffered({{"Desk", "8787"}});
  stopDaemon();
  stopBus();
  expectSleep();
  startAll();
  expectOffered({{"Desk", "8787"}});
}

TEST_F(SystemAdvertiserTest, ATakenNameGetsANumber) {
  startAll();
  const auto other = start({"avahi-publish", "-s", "Desk", "_orvel._tcp", "9"});
  expectOffered({{"Desk", "9"}});
  SystemAdvertiser advertiser;
  advertiser.advertise("Desk", "_orvel._tcp", 8787);
  expectOffered({{"Desk", "9"}, {"Desk #2", "8787"}});
}

TEST_F(SystemAdvertiserTest, ALongNameIsCutBetweenCharacters) {
  startAll();
  std::string name = "x";
  std::string expected = "x";
  for (int count = 0; count < 30; ++count) name += "日";
  for (int count = 0; count < 20; ++count) expected += "日";
  SystemAdvertiser advertiser;
  advertiser.advertise(name, "_orvel._tcp", 8787);
  expectOffered({{expected, "8787"}});
}

TEST_F(SystemAdvertiserTest, WhatCannotBeAnnouncedDoesNoHarm) {
  startAll();
  SystemAdvertiser advertiser;
  advertiser.advertise("", "_orvel._tcp", 8787);
  advertiser.advertise("Desk\xff", "_orvel._tcp", 8787);
  advertiser.advertise("Desk", "no type", 8787);
  expectSleep();
  advertiser.advertise("Desk", "_orvel._tcp", 8787);
  expectOffered({{"Desk", "8787"}});
}

TEST_F(SystemAdvertiserTest, ItEndsQuicklyInEveryState) {
  std::optional<SystemAdvertiser> advertiser(std::in_place);
  expectQuickEnd(advertiser);

  advertiser.emplace().advertise("Desk", "_orvel._tcp", 8787);
  expectQuickEnd(advertiser);

  startBus();
  advertiser.emplace().advertise("Desk", "_orvel._tcp", 8787);
  expectQuickEnd(advertiser);

  startDaemon();
  advertiser.emplace().advertise("Desk", "_orvel._tcp", 8787);
  advertiser->withdraw();
  expectQuickEnd(advertiser);

  bus_->signal(SIGSTOP);
  advertiser.emplace().advertise("Desk", "_orvel._tcp", 8787);
  expectQuickEnd(advertiser);
  bus_->signal(SIGCONT);
  EXPECT_TRUE(eventually([] { return !wakeUps().has_value(); })) << "its thread is still there";
}

}  // namespace
}  // namespace orvel
