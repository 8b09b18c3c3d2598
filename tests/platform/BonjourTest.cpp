#include "platform/BonjourTest.hpp"

#include "platform/PrivateNetwork.hpp"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <thread>
#include <utility>

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

}  // namespace

void BonjourTest::SetUpTestSuite() {
  obstacle() = enterPrivateNetwork();
  unsetenv("DBUS_SYSTEM_BUS_ADDRESS");
}

void BonjourTest::SetUp() {
  if (obstacle()) {
    std::cout << "Bonjour is not tested here. " << *obstacle() << std::endl;
    GTEST_SKIP() << *obstacle();
  }
  std::ofstream(scratch_.path() / "bus.conf") << busConfiguration;
  std::ofstream(scratch_.path() / "daemon.conf") << daemonConfiguration;
}

void BonjourTest::TearDown() {
  stopDaemon();
  stopBus();
}

std::unique_ptr<ChildProcess> BonjourTest::start(std::vector<std::string> command) {
  return std::make_unique<ChildProcess>(ChildProcess::Program{.command = std::move(command)});
}

void BonjourTest::startBus() {
  fs::create_directories("/run/dbus");
  bus_ = start({"dbus-daemon", "--nofork", "--nosyslog", "--config-file=" + (scratch_.path() / "bus.conf").string()});
  // Its socket is there before it listens, and a daemon that is refused does not ask again.
  ASSERT_TRUE(eventually([] {
    return start({"dbus-send", "--system", "--print-reply", "--dest=org.freedesktop.DBus", "/org/freedesktop/DBus",
                  "org.freedesktop.DBus.GetId"})
               ->waitForExit() == 0;
  }));
}

void BonjourTest::stopBus() {
  bus_.reset();
  if (!obstacle()) fs::remove_all("/run/dbus");
}

void BonjourTest::startDaemon() {
  daemon_ = start({"avahi-daemon", "--no-chroot", "--no-drop-root", "-f", scratch_.path() / "daemon.conf"});
  ASSERT_TRUE(eventually([] { return start({"avahi-browse", "-at"})->waitForExit() == 0; }));
}

void BonjourTest::stopDaemon() {
  daemon_.reset();
}

void BonjourTest::startAll() {
  startBus();
  startDaemon();
}

std::vector<BonjourTest::Found> BonjourTest::browse() {
  const auto browser = start({"avahi-browse", "-rpt", "_orvel._tcp"});
  if (browser->waitForExit() != 0) return {{"nobody answers", ""}};
  std::istringstream output(browser->output());
  std::vector<Found> found;
  for (std::string line; std::getline(output, line);) {
    std::vector<std::string> fields;
    std::istringstream stream(line);
    for (std::string field; std::getline(stream, field, ';');) fields.push_back(field);
    if (fields.size() <= 8 || fields[0] != "=") continue;
    found.push_back({unescaped(fields[3]), fields[8], fields.size() > 9 ? fields[9] : ""});
  }
  std::sort(found.begin(), found.end(), [](const Found& a, const Found& b) { return a.name < b.name; });
  return found;
}

void BonjourTest::expectOffered(const std::vector<Found>& expected) {
  std::vector<Found> found;
  const bool came = eventually([&] { return (found = browse()) == expected; });
  EXPECT_TRUE(came) << ::testing::PrintToString(found);
}

bool BonjourTest::eventually(const std::function<bool()>& holds) {
  const auto deadline = std::chrono::steady_clock::now() + timeout;
  while (!holds()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    std::this_thread::sleep_for(Milliseconds(20));
  }
  return true;
}

std::optional<std::string>& BonjourTest::obstacle() {
  static std::optional<std::string> reason;
  return reason;
}

}  // namespace orvel
