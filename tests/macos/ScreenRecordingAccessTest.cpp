#include "MacTest.hpp"
#include "frameworks/ScreenAccess.hpp"
#include "platform/macos/SystemScreenRecordingAccess.hpp"

namespace orvel {
namespace {

class ScreenRecordingAccessTest : public MacTest {
 protected:
  void SetUp() override {
    MacTest::SetUp();
    fake::screenAccess() = {};
  }

  SystemScreenRecordingAccess access_;
};

TEST_F(ScreenRecordingAccessTest, IsWhatTheSystemSaysWithoutAskingTheUser) {
  EXPECT_FALSE(access_.isGranted());
  fake::screenAccess().isGranted = true;
  EXPECT_TRUE(access_.isGranted());
  EXPECT_EQ(fake::screenAccess().requests, 0);
}

TEST_F(ScreenRecordingAccessTest, TheUserIsAskedOnRequest) {
  access_.request();
  EXPECT_EQ(fake::screenAccess().requests, 1);
}

TEST_F(ScreenRecordingAccessTest, ARefusalIsSaidInTheSystemsWords) {
  EXPECT_EQ(access_.denial().onRequest,
            "Screen Recording is off for Orvel. Turn it on in Privacy & Security on the Mac, then try again.");
  EXPECT_EQ(access_.denial().onStart, "Screen Recording is off for Orvel. Turn it on in Privacy & Security.");
}

}  // namespace
}  // namespace orvel
