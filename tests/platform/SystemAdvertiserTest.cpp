#include "desktop/ChildProcess.hpp"
#include "desktop/TemporaryFolder.hpp"
#include "platform/PrivateNetwork.hpp"
#include "platform/linux/SystemAdvertiser.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace orvel {
namespace {

namespace fs = std::filesystem;

constexpr const char* busConfiguration = R"(<busconfig>
  <listen>unix:path=/run/dbus/system_bus_socket</listen>
  <policy context="default">
    <allow send_destination="*" eavesdrop="true"/>
    <allow eavesdrop="true"/>
    <allow own="*"/>
  </policy>
</busconfig>)";
constexpr const char* daemonConfiguration = "[server]\nhost-name=orvel-test\nuse-ipv6=no\n[rlimits]\n";

struct Found {
  std::string name;
  std::string port;

  friend bool operator==(const Found&, const Found&) = default;
  friend std::ostream& operator<<(std::ostream& out, const Found& each) { return out << each.name << ':' << each.port; }
};

/// Resolves the decimal escapes of avahi-browse.
std::string unescaped(const std::string& text) {
  std::string plain;
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == '\\' && at + 3 < text.size()) {
      plain += static_cast<char>(std::stoi(text.substr(at + 1, 3)));
      at += 3;
    } else {
      plain += text[at];
    }
  }
  return plain;
}

/// The system bus, the Avahi daemon and other programs in a network of the test's own.
class SystemAdvertiserTest : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    obstacle() = enterPrivateNetwork();
    unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
  }

  void SetUp() override {
    if (obstacle()) {
      std::cout << "Bonjour is not tested here. " << *obstacle() << std::endl;
      GTEST_SKIP() << *obstacle();
    }
    std::ofstream(scratch_.path() / "bus.conf") << busConfiguration;
    std::ofstream(scratch_.path() / "daemon.conf") << daemonConfiguration;
  }

  void TearDown() override {
    stopDaemon();
    stopBus();
  }

  static std::unique_ptr<ChildProcess> start(std::vector<std::string> command) {
    return std::make_unique<ChildProcess>(ChildProcess::Program{.command = std::move(command)});
  }

  void startBus() {
    fs::create_directories("/run/dbus");
    bus_ = start({"dbus-daemon", "--nofork", "--nosyslog", "--config-file=" + (scratch_.path() / "bus.conf").string()});
    // Its socket is there before it listens, and a daemon that is refused does not ask again.
    ASSERT_TRUE(eventually([] {
      return start({"dbus-send", "--system", "--print-reply", "--dest=org.freedesktop.DBus", "/org/freedesktop/DBus",
                    "org.freedesktop.DBus.GetId"})
                 ->waitForExit() == 0;
    }));
  }

  void stopBus() {
    bus_.reset();
    if (!obstacle()) fs::remove_all("/run/dbus");
  }

  void startDaemon() {
    daemon_ = start({"avahi-daemon", "--no-chroot", "--no-drop-root", "-f", scratch_.path() / "daemon.conf"});
    ASSERT_TRUE(eventually([] { return start({"avahi-browse", "-at"})->waitForExit() == 0; }));
  }

  void stopDaemon() { daemon_.reset(); }

  void startAll() {
    startBus();
    startDaemon();
  }

  /// What the network offers now.
  static std::vector<Found> browse() {
    const auto browser = start({"avahi-browse", "-rpt", "_orvel._tcp"});
    if (browser->waitForExit() != 0) return {{"nobody answers", ""}};
    std::istringstream output(browser->output());
    std::vector<Found> found;
    for (std::string line; std::getline(output, line);) {
      std::vector<std::string> fields;
      std::istringstream stream(line);
      for (std::string field; std::getline(stream, field, ';');) fields.push_back(field);
      if (fields.size() > 8 && fields[0] == "=") found.push_back({unescaped(fields[3]), fields[8]});
    }
    std::sort(found.begin(), found.end(), [](const Found& a, const Found& b) { return a.name < b.name; });
    return found;
  }

  static void expectOffered(const std::vector<Found>& expected) {
    std::vector<Found> found;
    const bool came = eventually([&] { return (found = browse()) == expected; });
    EXPECT_TRUE(came) << ::testing::PrintToString(found);
  }

  static bool eventually(const std::function<bool()>& holds) {
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (!holds()) {
      if (std::chrono::steady_clock::now() > deadline) return false;
      std::this_thread::sleep_for(Milliseconds(20));
    }
    return true;
  }

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

  static std::optional<std::string>& obstacle() {
    static std::optional<std::string> reason;
    return reason;
  }

  TemporaryFolder scratch_;
  std::unique_ptr<ChildProcess> bus_;
  std::unique_ptr<ChildProcess> daemon_;
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

TEST_F(SystemAdvertiserTest, ADaemonThatComesLateIsToldThen) {
  startBus();
  SystemAdvertiser advertiser;
  advertiser.advertise("Desk", "_orvel._tcp", 8787);
  expectSleep();
  startDaemon();
  expectOffered({{"Desk", "8787"}});
}

TEST_F(SystemAdvertiserTest, ABusThatComesLateIsUsedThen) {
  SystemAdvertiser advertiser;
  advertiser.advertise("Desk", "_orvel._tcp", 8787);
  expectSleep();
  startAll();
  expectOffered({{"Desk", "8787"}});
}

TEST_F(SystemAdvertiserTest, ARestartedDaemonIsToldAgain) {
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
