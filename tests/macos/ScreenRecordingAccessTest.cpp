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
  EXPECT_TRUE(access_.request());
  EXPECT_EQ(fake::screenAccess().requests, 1);
}

}  // namespace
}  // namespace orvel
