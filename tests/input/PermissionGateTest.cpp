#include "fakes/RecordingDesktop.hpp"
#include "input/PermissionGate.hpp"

#include <gtest/gtest.h>

#include <vector>

namespace orvel {
namespace {

TEST(PermissionGate, TrustsNobodyBeforeTheFirstRefresh) {
  RecordingDesktop desktop;
  const PermissionGate gate(desktop);
  EXPECT_FALSE(gate.cachedTrust());
}

TEST(PermissionGate, AGrantCountsFromTheNextRefresh) {
  RecordingDesktop desktop;
  desktop.trusted = false;
  PermissionGate gate(desktop);
  EXPECT_FALSE(gate.refresh());
  desktop.trusted = true;
  EXPECT_FALSE(gate.cachedTrust());
  EXPECT_TRUE(gate.refresh());
  EXPECT_TRUE(gate.cachedTrust());
}

TEST(PermissionGate, PublishesEveryAnswer) {
  RecordingDesktop desktop;
  PermissionGate gate(desktop);
  std::vector<bool> published;
  gate.publishTo([&](bool trusted) { published.push_back(trusted); });
  gate.refresh();
  desktop.trusted = false;
  gate.refresh();
  EXPECT_EQ(published, (std::vector{true, false}));
}

TEST(PermissionGate, ARequestPromptsAndOpensTheSettingsButRemembersNothing) {
  RecordingDesktop desktop;
  PermissionGate gate(desktop);
  gate.request();
  EXPECT_EQ(desktop.prompts, 1);
  EXPECT_EQ(desktop.settingsOpened, 1);
  EXPECT_FALSE(gate.cachedTrust());
}

}  // namespace
}  // namespace orvel
