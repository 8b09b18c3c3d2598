#include "MacTest.hpp"
#include "frameworks/LoginItems.hpp"
#include "platform/macos/SystemLoginItemService.hpp"
#include "ui/LoginItem.hpp"

#include <gmock/gmock.h>

namespace orvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr int notRegistered = 0;
constexpr int enabled = 1;
constexpr int requiresApproval = 2;
constexpr int notFound = 3;

class LoginItemTest : public MacTest {
 protected:
  void SetUp() override {
    MacTest::SetUp();
    fake::loginItems() = {};
  }

  std::vector<std::string>& calls() { return fake::loginItems().calls; }

  SystemLoginItemService service_;
  LoginItem item_{service_};
};

TEST_F(LoginItemTest, IsOnOnlyWhileTheSystemSaysEnabled) {
  for (const int status : {notRegistered, enabled, requiresApproval, notFound}) {
    fake::loginItems().status = status;
    EXPECT_EQ(item_.isEnabled(), status == enabled) << status;
  }
  EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(LoginItemTest, IsSwitchedOnAndOff) {
  EXPECT_TRUE(item_.set(true));
  EXPECT_TRUE(item_.isEnabled());
  EXPECT_TRUE(item_.set(false));
  EXPECT_FALSE(item_.isEnabled());
  EXPECT_THAT(calls(), ElementsAre("register", "unregister"));
}

TEST_F(LoginItemTest, WhatWasNeverOnIsNotSwitchedOff) {
  for (const int status : {notRegistered, notFound}) {
    fake::loginItems().status = status;
    EXPECT_FALSE(item_.set(false));
    EXPECT_EQ(fake::loginItems().status, status);
  }
  EXPECT_THAT(calls(), IsEmpty());
}

TEST_F(LoginItemTest, MayBeOnFromTheVeryFirst) {
  fake::loginItems().status = notFound;
  EXPECT_TRUE(item_.set(true));
  EXPECT_TRUE(item_.isEnabled());
}

TEST_F(LoginItemTest, WhatItsUserSwitchedOffInTheSettingsStaysOffAndCanBeTakenOut) {
  fake::loginItems().status = requiresApproval;
  EXPECT_FALSE(item_.set(true));
  EXPECT_FALSE(item_.isEnabled());
  EXPECT_TRUE(item_.set(false));
  EXPECT_EQ(fake::loginItems().status, notRegistered);
}

TEST_F(LoginItemTest, StaysAsItWasWhenTheSystemRefuses) {
  fake::loginItems().fails = true;
  EXPECT_FALSE(item_.set(true));
  EXPECT_FALSE(item_.isEnabled());
  fake::loginItems().status = enabled;
  EXPECT_FALSE(item_.set(false));
  EXPECT_TRUE(item_.isEnabled());
}

}  // namespace
}  // namespace orvel
