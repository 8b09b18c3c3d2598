#include "MacTest.hpp"
#include "frameworks/OpenedURLs.hpp"
#include "frameworks/Trust.hpp"
#include "platform/macos/SystemTrustCheck.hpp"

#include <gmock/gmock.h>

#include <thread>

namespace orvel {
namespace {

using testing::ElementsAre;

class TrustCheckTest : public MacTest {
 protected:
  void SetUp() override {
    MacTest::SetUp();
    fake::trust() = {};
    fake::openedURLs() = {};
  }

  SystemTrustCheck check_;
};

TEST_F(TrustCheckTest, IsWhatTheSystemSaysNowWithoutAskingTheUser) {
  EXPECT_FALSE(check_.isTrusted());
  fake::trust().isGranted = true;
  EXPECT_TRUE(check_.isTrusted());
  EXPECT_EQ(fake::trust().prompts, 0);
}

TEST_F(TrustCheckTest, TheSystemAsksTheUserWhateverItAnswers) {
  check_.prompt();
  EXPECT_EQ(fake::trust().prompts, 1);
}

TEST_F(TrustCheckTest, TheSettingsOpenAtTheListOfPrograms) {
  check_.openSettings();
  EXPECT_THAT(fake::openedURLs().all,
              ElementsAre("x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility"));
}

TEST_F(TrustCheckTest, AnyThreadMayAsk) {
  std::thread([this] {
    EXPECT_FALSE(check_.isTrusted());
    check_.prompt();
    check_.openSettings();
  }).join();
}

TEST_F(TrustCheckTest, WhatIsMissingIsSaidInTheSystemsWords) {
  const PermissionNotice notice = check_.notice();
  EXPECT_EQ(notice.heading, "Accessibility is off");
  EXPECT_EQ(notice.explanation,
            "macOS will not let Orvel move the cursor until you tick it under Privacy & Security → Accessibility.");
  EXPECT_EQ(notice.action, "Open Accessibility settings");
}

}  // namespace
}  // namespace orvel
