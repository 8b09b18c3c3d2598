#include "program/ProgramFixture.hpp"
#include "session/RawWebSocket.hpp"

#include <algorithm>
#include <chrono>
#include <string>
#include <thread>
#include <vector>

namespace orvel {
namespace {

using Kind = X11Witness::Kind;

/// A key that the server does not repeat while it is held.
constexpr int heldShiftKey = 50;

/// Another computer on a network of two, made of a namespace that lives as long as its first program.
class OtherComputer {
 public:
  static constexpr const char* hostAddress = "10.87.87.1";
  static constexpr const char* phoneAddress = "10.87.87.2";

  OtherComputer() : keeper_({.command = {"unshare", "--net", "sh", "-c", "echo ready; exec sleep 100"}}) {
    reachable_ = keeper_.waitForOutput("ready") &&
                 run({"ip", "link", "add", "orvel-host", "type", "veth", "peer", "name", "orvel-phone", "netns",
                      std::to_string(keeper_.pid())}) &&
                 run({"ip", "addr", "add", std::string(hostAddress) + "/24", "dev", "orvel-host"}) &&
                 run({"ip", "link", "set", "orvel-host", "up"}) &&
                 runThere({"ip", "addr", "add", std::string(phoneAddress) + "/24", "dev", "orvel-phone"}) &&
                 runThere({"ip", "link", "set", "orvel-phone", "up"});
  }

  bool isReachable() const { return reachable_; }

  /// What is sent there is lost from now on, while what comes from there still arrives.
  bool makeDeaf() {
    return run({"ip", "neigh", "replace", phoneAddress, "lladdr", "02:00:00:00:00:99", "nud", "permanent", "dev",
                "orvel-host"});
  }

  /// Nothing arrives any more, neither here nor there, and nobody is notified.
  bool vanish() { return runThere({"ip", "addr", "flush", "dev", "orvel-phone"}); }

  std::vector<std::string> there(std::vector<std::string> command) const {
    const std::vector<std::string> enter = {"nsenter", "--net", "--target", std::to_string(keeper_.pid())};
    command.insert(command.begin(), enter.begin(), enter.end());
    return command;
  }

 private:
  static bool run(const std::vector<std::string>& command) {
    return ChildProcess({.command = command}).waitForExit() == 0;
  }
  bool runThere(const std::vector<std::string>& command) const { return run(there(command)); }

  ChildProcess keeper_;
  bool reachable_ = false;
};

struct VanishedPhoneTest : ProgramFixture {
  /// Has a phone on the other computer do these commands.
  std::vector<std::string> phoneDoing(const OtherComputer& computer, std::vector<std::string> commands) const {
    const std::vector<std::string> start = {ORVEL_PHONE_PROGRAM, "--host", OtherComputer::hostAddress, "--token", code};
    commands.insert(commands.begin(), start.begin(), start.end());
    return computer.there(commands);
  }

  bool waitForRelease(Kind kind, int detail, Milliseconds limit) {
    return witness.waitFor(
        [&](const X11Witness::Inputs& inputs) {
          return std::ranges::any_of(
              inputs, [&](const X11Witness::Input& input) { return input.kind == kind && input.detail == detail; });
        },
        limit);
  }
};

TEST_F(VanishedPhoneTest, IsNoticedWithinThirtySecondsButNotMistakenForOneThatSleeps) {
  OtherComputer computer;
  if (!computer.isReachable()) GTEST_SKIP() << "this system does not let us make a network of our own";

  // Lives all the while, but takes nothing in.
  RawWebSocket asleep(HostProcess::port, 4096);
  ASSERT_TRUE(asleep.open());
  const std::string request = bytesOf(RawFrame{.opcode = opcode::text, .payload = R"({"t":"ping"})"});
  std::string requests;
  for (int count = 0; count < 4096; ++count) requests += request;
  while (asleep.send(requests, std::chrono::milliseconds(500))) {
  }

  // One phone just goes silent, with a key held; another leaves an answer unacknowledged, with a button held.
  ChildProcess silent({.command = phoneDoing(computer, {"keydown", "shift", "wait", "90"})});
  ASSERT_TRUE(waitForInput(Kind::keyDown, heldShiftKey)) << silent.output();
  std::vector<std::string> pings = {"press", "right"};
  for (int count = 0; count < 20; ++count) pings.insert(pings.end(), {"wait", "0.1", "ping"});
  ChildProcess answered({.command = phoneDoing(computer, pings)});
  ASSERT_TRUE(waitForInput(Kind::buttonDown, 3)) << answered.output();
  ChildProcess watching({.command = phoneDoing(computer, {"mirror", "90"})});
  ASSERT_TRUE(host.process().waitForOutput("Sharing your screen\n")) << watching.output();
  // Long enough for the host to see that all it has said has arrived.
  std::this_thread::sleep_for(std::chrono::milliseconds(3500));
  ASSERT_TRUE(computer.makeDeaf());
  std::this_thread::sleep_for(std::chrono::milliseconds(400));
  ASSERT_TRUE(computer.vanish());

  const Deadline limit(std::chrono::seconds(30));
  // A picture that nobody acknowledges.
  auto neighbour = connectPaired();
  neighbour.sendFrame(phone::moveAbsoluteFrame(0.5, 0.5));
  EXPECT_FALSE(waitForRelease(Kind::keyUp, heldShiftKey, std::chrono::seconds(5)))
      << "a phone may be silent for a while";
  EXPECT_TRUE(waitForRelease(Kind::buttonUp, 3, limit.left()));
  EXPECT_TRUE(waitForRelease(Kind::keyUp, heldShiftKey, limit.left()));
  EXPECT_TRUE(host.process().waitForOutput("No longer sharing your screen\n", limit.left()));

  EXPECT_TRUE(asleep.readFrame()) << "the greeting";
  for (int count = 0; count < 10'000; ++count) ASSERT_TRUE(asleep.readFrame()) << count;
}

}  // namespace
}  // namespace orvel
