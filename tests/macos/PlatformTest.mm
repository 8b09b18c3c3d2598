#include "CaptureTest.hpp"
#include "frameworks/WindowServer.hpp"
#include "mirror/CaptureService.hpp"
#include "platform/Platform.hpp"

#include <gmock/gmock.h>
#include <sys/resource.h>

#include <cstdlib>
#include <memory>
#include <variant>

namespace orvel {
namespace {

using PlatformTest = CaptureTest;

TEST_F(PlatformTest, SaysWhyThereIsNoDesktop) {
  EXPECT_EQ(missingDesktop(), std::nullopt);
  fake::hasWindowServer() = false;
  EXPECT_THAT(missingDesktop(), testing::Optional(testing::HasSubstr("came over the network")));
  fake::hasWindowServer() = true;
}

TEST_F(PlatformTest, KeepsTheToolkitFromTakingAPlaceInTheDock) {
  unsetenv("QT_MAC_DISABLE_FOREGROUND_APPLICATION_TRANSFORM");
  EXPECT_TRUE(prepareToolkit().empty());
  EXPECT_STREQ(std::getenv("QT_MAC_DISABLE_FOREGROUND_APPLICATION_TRANSFORM"), "1");
}

TEST_F(PlatformTest, HasRoomForTheFilesOfManyPhones) {
  rlimit before{};
  getrlimit(RLIMIT_NOFILE, &before);
  rlimit limit = before;
  limit.rlim_cur = 256;
  setrlimit(RLIMIT_NOFILE, &limit);
  EXPECT_TRUE(std::holds_alternative<std::unique_ptr<Platform>>(openPlatform()));
  getrlimit(RLIMIT_NOFILE, &limit);
  EXPECT_GT(limit.rlim_cur, 256u);
  setrlimit(RLIMIT_NOFILE, &before);
}

TEST_F(PlatformTest, GivesUpWhatMayHang) {
  const auto platform = std::get<std::unique_ptr<Platform>>(openPlatform());
  fake::screenCapture().content.comes = false;
  platform->giveUp();
  EXPECT_EQ(std::get<CaptureFailure>(platform->capture().shareableContent()).description,
            "The system does not answer.");
}

}  // namespace
}  // namespace orvel
