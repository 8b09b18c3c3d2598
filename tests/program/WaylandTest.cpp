#include "desktop/AccessibleProgram.hpp"
#include "desktop/WaylandDesktop.hpp"
#include "desktop/X11Witness.hpp"
#include "program/HostProcess.hpp"
#include "tools/PhoneClient.hpp"
#include "tools/PhoneFrames.hpp"

#include <gmock/gmock.h>

#include <csignal>
#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

namespace orvel {
namespace {

using phone::MouseButton;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

constexpr phone::Seconds phoneLimit{30};
constexpr const char* explanation =
    "In a Wayland session Orvel can neither move the pointer nor type: log out, then log in to an X11 session.";
constexpr const char* remoteDesktop = "org.freedesktop.portal.RemoteDesktop";

/// A desktop on which the program can do nothing yet, and is to say so.
struct WaylandTest : testing::TestWithParam<WaylandDesktop::Kind> {
  static phone::PhoneClient connect() {
    auto client = phone::PhoneClient::connect("127.0.0.1", HostProcess::port, phoneLimit);
    if (!client) throw std::runtime_error(client.error().text);
    return std::move(*client);
  }

  /// Everything that a phone may try, and some of it left pressed.
  static void tryEverything(phone::PhoneClient& phone) {
    phone.sendFrame(phone::moveFrame(30, 20));
    phone.sendFrame(phone::moveAbsoluteFrame(0.5, 0.5));
    phone.sendFrame(phone::clickFrame(MouseButton::left, 1));
    phone.sendFrame(phone::scrollFrame(0, 400));
    phone.sendFrame(phone::keyFrame(0, true, 1));
    phone.sendFrame(phone::keyFrame(0, false, 1));
    phone.sendFrame(phone::mediaFrame(0));
    phone.sendFrame(*phone::textFrame("a€中"));
    phone.send({{"t", "snap"}});
    phone.send({{"t", "reveal"}});
    phone.sendFrame(phone::buttonFrame(MouseButton::left, true));
    phone.sendFrame(phone::keyFrame(1, true, 0));
  }

  void SetUp() override {
    if (const auto obstacle = WaylandDesktop::obstacle(GetParam())) GTEST_SKIP() << *obstacle;
    desktop.emplace(GetParam());
  }

  std::optional<WaylandDesktop> desktop;
};

TEST_P(WaylandTest, APhoneIsToldTheTruthAndMovesNothing) {
  ChildProcess portalCalls(
      {.command = {"dbus-monitor", "--address", desktop->bus().address(),
                   std::string("interface='") + remoteDesktop + "'", std::string("arg0='") + remoteDesktop + "'"},
       .environment = desktop->environment()});
  ASSERT_TRUE(portalCalls.waitForOutput("NameLost")) << portalCalls.output();
  setenv("XAUTHORITY", desktop->environment().at("XAUTHORITY").value_or("").c_str(), 1);
  X11Witness witness(desktop->display());
  const auto pointer = witness.pointer();
  HostProcess host(desktop->environment(), {"--background"});
  ASSERT_TRUE(host.waitUntilListening()) << host.process().output();
  {
    auto phone = connect();
    const auto welcome = phone.pair(host.code(), "Test phone", phoneLimit);
    ASSERT_TRUE(welcome) << welcome.error().text;
    EXPECT_FALSE(welcome->accessibility);
    tryEverything(phone);
    ASSERT_FALSE(phone.finishWork(phoneLimit));
    phone.send({{"t", "mirrorStart"}});
    const auto denial = phone.receive("mirrorDenied", phoneLimit);
    ASSERT_TRUE(denial) << denial.error().text;
    EXPECT_EQ(denial->at("reason"),
              "Orvel cannot share the screen of a Wayland session yet. Log in to an X11 session on the computer, then "
              "try again.");
  }
  host.process().signal(SIGTERM);
  EXPECT_EQ(host.process().waitForExit(), 0) << host.process().output();
  EXPECT_TRUE(witness.catchUp().empty()) << witness.inputs().front();
  EXPECT_EQ(witness.pointer(), pointer);
  // Some desktops ask their user by the portal at the first input that comes by XTEST.
  EXPECT_THAT(portalCalls.output(), Not(HasSubstr(remoteDesktop)));
  witness.movePointer(40, 50);
  EXPECT_TRUE(witness.waitForCount(1, Milliseconds(3000)) || portalCalls.waitForOutput(remoteDesktop))
      << "neither witness sees anything at all";
}

TEST_P(WaylandTest, WhoeverSitsAtTheComputerIsToldWhyAndWhatToDo) {
  ASSERT_TRUE(desktop->bus().switchOnAccessibility());
  HostProcess host(desktop->environment(), {});
  ASSERT_TRUE(host.waitUntilListening()) << host.process().output();
  EXPECT_TRUE(host.process().waitForOutput(std::string(explanation) + '\n')) << host.process().output();
  ChildProcess pair({.command = {ORVEL_PROGRAM, "--pair"}, .environment = desktop->environment()});
  EXPECT_EQ(pair.waitForExit(), 0);
  EXPECT_THAT(pair.output(), HasSubstr(std::string(explanation) + '\n'));
  const AccessibleProgram panel(desktop->bus(), host.process().pid());
  EXPECT_TRUE(panel.waitFor("label", "Waiting for permission").isShowing);
  EXPECT_THAT(panel.names("label"), ElementsAre("Orvel", "Waiting for permission", "Orvel does not work on Wayland yet",
                                                explanation, "Connected", "No phones right now"));
  EXPECT_THAT(panel.names("push button"), ElementsAre("Show code", "Restart", "New code", "Quit"));
}

INSTANTIATE_TEST_SUITE_P(Sway, WaylandTest, testing::Values(WaylandDesktop::Kind::sway));
INSTANTIATE_TEST_SUITE_P(Gnome, WaylandTest, testing::Values(WaylandDesktop::Kind::gnome));

}  // namespace
}  // namespace orvel
