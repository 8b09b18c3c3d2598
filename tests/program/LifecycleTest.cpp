#include "program/ProgramFixture.hpp"

#include <gmock/gmock.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace orvel {
namespace {

using phone::MouseButton;
using Kind = X11Witness::Kind;

struct LifecycleTest : ProgramFixture {
  std::filesystem::path preferences() const { return desktop.home() / ".config/orvel/orvel.conf"; }
};

TEST_F(LifecycleTest, PhonesComeByBothInternetProtocols) {
  for (const char* address : {"127.0.0.1", "::1"}) {
    auto phone = connect(address);
    const auto greeting = phone.greeting(phoneTimeout);
    ASSERT_TRUE(greeting) << address;
    EXPECT_EQ(greeting->version, 1);
    EXPECT_FALSE(greeting->mac.empty());
  }
}

TEST_F(LifecycleTest, PairingSaysWhetherInputIsAllowed) {
  auto phone = connect();
  const auto welcome = phone.pair(code, "Zoe's phone", phoneTimeout);
  ASSERT_TRUE(welcome);
  EXPECT_TRUE(welcome->accessibility);
}

TEST_F(LifecycleTest, AWrongCodeIsDeniedAndTheConnectionClosed) {
  auto phone = connect();
  const auto welcome = phone.pair("ABCDEFGHJKMNPQRS", "Mallory", phoneTimeout);
  ASSERT_FALSE(welcome);
  EXPECT_EQ(welcome.error().kind, phone::Error::Kind::denied);
  const auto failure = phone.idle(phoneTimeout);
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->kind, phone::Error::Kind::ended);
}

TEST_F(LifecycleTest, TheCodeIsTheUsersAloneAndStays) {
  const auto mode = std::filesystem::status(preferences()).permissions();
  EXPECT_EQ(mode, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
  host.process().signal(SIGTERM);
  ASSERT_EQ(host.process().waitForExit(), 0);
  HostProcess next(desktop);
  ASSERT_TRUE(next.waitUntilListening());
  EXPECT_EQ(next.code(), code);
}

TEST_F(LifecycleTest, TheThemeOfTheDesktopBringsNoOtherToolkitAlong) {
  host.process().signal(SIGTERM);
  ASSERT_EQ(host.process().waitForExit(), 0);
  auto environment = desktop.environment();
  environment["XDG_CURRENT_DESKTOP"] = "XFCE";
  HostProcess next(desktop, environment);
  ASSERT_TRUE(next.waitUntilListening());
  std::ifstream file("/proc/" + std::to_string(next.process().pid()) + "/maps");
  const std::string libraries(std::istreambuf_iterator<char>(file), {});
  EXPECT_THAT(libraries, testing::HasSubstr("libQt6Widgets"));
  EXPECT_THAT(libraries, testing::Not(testing::HasSubstr("libgtk")));
}

struct SignalTest : LifecycleTest, testing::WithParamInterface<int> {};

TEST_P(SignalTest, EndsItCleanly) {
  auto phone = connectPaired();
  phone.sendFrame(phone::buttonFrame(MouseButton::left, true));
  ASSERT_TRUE(waitForInput(Kind::buttonDown, 1));
  host.process().signal(GetParam());
  const auto failure = phone.idle(phoneTimeout);
  ASSERT_TRUE(failure);
  EXPECT_EQ(failure->kind, phone::Error::Kind::ended);
  EXPECT_TRUE(waitForInput(Kind::buttonUp, 1));
  EXPECT_EQ(host.process().waitForExit(), 0);
}

INSTANTIATE_TEST_SUITE_P(Polite, SignalTest, testing::Values(SIGINT, SIGTERM, SIGHUP));

TEST_F(LifecycleTest, WhenTheDesktopGoesItEnds) {
  auto phone = connectPaired();
  desktop.killServer();
  EXPECT_EQ(host.process().waitForExit(), 1) << host.process().output();
  EXPECT_TRUE(phone.idle(phoneTimeout));
}

TEST_F(LifecycleTest, ADesktopThatHangsDoesNotHoldUpTheEnd) {
  auto phone = connectPaired();
  desktop.signalServer(SIGSTOP);
  phone.sendFrame(phone::clickFrame(MouseButton::left, 1));  // asks the server where the pointer is
  EXPECT_FALSE(phone.ping(phone::Seconds(0.3)));
  host.process().signal(SIGTERM);
  const auto exitCode = host.process().waitForExit();
  desktop.signalServer(SIGCONT);
  EXPECT_EQ(exitCode, 0) << host.process().output();
}

TEST_F(LifecycleTest, ASecondHostSaysThatThePortIsTakenAndHarmsNothing) {
  auto phone = connectPaired("Zoe's phone");
  HostProcess second(desktop);
  EXPECT_TRUE(second.process().waitForOutput("Port 8787 is taken. Quit whatever is using it, then hit Restart."))
      << second.process().output();
  EXPECT_EQ(second.code(), code);
  settle(phone);
  second.process().signal(SIGTERM);
  EXPECT_EQ(second.process().waitForExit(), 0);
  settle(phone);
  EXPECT_EQ(host.code(), code);
}

TEST_F(LifecycleTest, APortThatFadesFromTheLastRunIsTakenAgain) {
  auto phone = connectPaired();
  host.process().signal(SIGTERM);  // the host closes first, so its end of the connection lingers
  ASSERT_EQ(host.process().waitForExit(), 0);
  HostProcess next(desktop);
  EXPECT_TRUE(next.waitUntilListening()) << next.process().output();
}

}  // namespace
}  // namespace orvel
