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
  EXPECT_TRUE(check_.prompt());
  EXPECT_EQ(fake::trust().prompts, 1);
}

TEST_F(TrustCheckTest, TheSettingsOpenAtTheListOfPrograms) {
  EXPECT_TRUE(check_.openSettings());
  EXPECT_THAT(fake::openedURLs().all,
              ElementsAre("x-apple.systempreferences:com.apple.preference.security?Privacy_Accessibility"));
}

TEST_F(TrustCheckTest, SettingsThatDoNotOpenAreReported) {
  fake::openedURLs().areRefused = true;
  EXPECT_FALSE(check_.openSettings());
}

TEST_F(TrustCheckTest, AnyThreadMayAsk) {
  std::thread([this] {
    EXPECT_FALSE(check_.isTrusted());
    EXPECT_TRUE(check_.prompt());
    EXPECT_TRUE(check_.openSettings());
  }).join();
}

TEST_F(TrustCheckTest, ThereIsNothingToAddToWhatTheSystemSays) {
  EXPECT_EQ(check_.advice(), "");
}

}  // namespace
}  // namespace orvel
