#include "app/ConsoleStatus.hpp"
#include "app/ServerHub.hpp"

#include <gtest/gtest.h>

#include <sstream>

namespace orvel {
namespace {

struct ConsoleStatusTest : testing::Test {
  std::string shown(const HubState& was, const HubState& next) {
    std::ostringstream out;
    ConsoleStatus(
        out, [this] { return address; }, [] { return "Nothing moves."; })
        .show(was, next);
    return out.str();
  }

  std::string address = "10.0.0.2:8787";
  const HubState idle{};
  const HubState running{.isRunning = true, .accessibilityGranted = true};
};

TEST_F(ConsoleStatusTest, SaysWhereItListensAndHowToPair) {
  EXPECT_EQ(shown(idle, running),
            "Listening on 10.0.0.2:8787\nTo pair a phone: orvel --show opens the panel, orvel --pair prints what a "
            "phone needs\n");
  EXPECT_EQ(shown(running, running), "");
}

TEST_F(ConsoleStatusTest, SaysWhyNothingWillMove) {
  const HubState forbidden{.isRunning = true};
  EXPECT_EQ(shown(idle, forbidden),
            "Listening on 10.0.0.2:8787\nTo pair a phone: orvel --show opens the panel, orvel --pair prints what a "
            "phone needs\nNothing moves.\n");
  EXPECT_EQ(shown(forbidden, forbidden), "");
  EXPECT_EQ(shown(running, forbidden), "Nothing moves.\n");
  EXPECT_EQ(shown(forbidden, running), "");
}

TEST_F(ConsoleStatusTest, SaysWhatWentWrong) {
  EXPECT_EQ(shown(idle, {.lastError = "Port taken."}),
            "Port taken.\nTo try again, hit Restart in the panel: orvel --show opens it.\n");
  EXPECT_EQ(shown({.lastError = "Port taken."}, {.lastError = "Port taken."}), "");
}

TEST_F(ConsoleStatusTest, CountsThePhones) {
  EXPECT_EQ(shown(running, {.isRunning = true, .clients = {"a"}, .accessibilityGranted = true}), "1 phone connected\n");
  EXPECT_EQ(shown({.isRunning = true, .clients = {"a"}, .accessibilityGranted = true},
                  {.isRunning = true, .clients = {"a", "b"}, .accessibilityGranted = true}),
            "2 phones connected\n");
  EXPECT_EQ(shown({.isRunning = true, .clients = {"a"}, .accessibilityGranted = true}, running),
            "0 phones connected\n");
}

TEST_F(ConsoleStatusTest, SaysWhetherTheScreenIsSeen) {
  const HubState shared{.isRunning = true, .accessibilityGranted = true, .mirroring = true};
  EXPECT_EQ(shown(running, shared), "Sharing your screen\n");
  EXPECT_EQ(shown(shared, shared), "");
  EXPECT_EQ(shown(shared, running), "No longer sharing your screen\n");
}

}  // namespace
}  // namespace orvel
