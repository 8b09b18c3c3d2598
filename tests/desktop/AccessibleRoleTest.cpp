#include "platform/linux/accessibility/AccessibleRole.hpp"

#include <gtest/gtest.h>

#include <cstdint>

namespace orvel {
namespace {

constexpr std::uint32_t mostRoles = 200;

TEST(AccessibleRoleTest, AMenuEntryIsNamedAfterWhereItStands) {
  EXPECT_EQ(axRole(AccessibleRole::menu, AccessibleRole::menuBar), "AXMenuBarItem");
  EXPECT_EQ(axRole(AccessibleRole::menuItem, AccessibleRole::menuBar), "AXMenuBarItem");
  EXPECT_EQ(axRole(AccessibleRole::menuItem, AccessibleRole::popupMenu), "AXMenuItem");
  EXPECT_EQ(axRole(AccessibleRole::checkMenuItem, AccessibleRole::menu), "AXMenuItem");
  EXPECT_EQ(axRole(AccessibleRole::menu, AccessibleRole::menu), "AXMenuItem") << "one that opens a further menu";
  EXPECT_EQ(axRole(AccessibleRole::menuItem, std::nullopt), "AXMenuItem");
}

TEST(AccessibleRoleTest, AMenuThatHasOpenedIsNoEntry) {
  EXPECT_EQ(axRole(AccessibleRole::menu, AccessibleRole::comboBox), std::nullopt);
  EXPECT_EQ(axRole(AccessibleRole::menu, AccessibleRole::menuItem), std::nullopt);
  EXPECT_EQ(axRole(AccessibleRole::menu, std::nullopt), std::nullopt);
  EXPECT_EQ(axRole(AccessibleRole::popupMenu, AccessibleRole::menuItem), std::nullopt);
}

TEST(AccessibleRoleTest, WhatCanBeActedOnHasAName) {
  for (std::uint32_t number = 0; number < mostRoles; ++number) {
    const auto role = static_cast<AccessibleRole>(number);
    EXPECT_TRUE(!isActionable(role) || axRole(role, AccessibleRole::menu)) << number;
    EXPECT_FALSE(isActionable(role) && isDecoration(role)) << number;
  }
}

TEST(AccessibleRoleTest, WhatHasNoRoleIsAPartOfWhatItStandsIn) {
  EXPECT_TRUE(isDecoration(AccessibleRole::none));
  EXPECT_EQ(axRole(AccessibleRole::none, std::nullopt), std::nullopt);
}

TEST(AccessibleRoleTest, ASwitchIsACheckBox) {
  EXPECT_EQ(axRole(static_cast<AccessibleRole>(130), std::nullopt), "AXCheckBox");
  EXPECT_TRUE(isActionable(static_cast<AccessibleRole>(130)));
}

TEST(AccessibleRoleTest, RolesThatNobodyKnowsHaveNone) {
  EXPECT_EQ(axRole(static_cast<AccessibleRole>(4'000'000'000), std::nullopt), std::nullopt);
  EXPECT_FALSE(isActionable(static_cast<AccessibleRole>(4'000'000'000)));
}

}  // namespace
}  // namespace orvel
