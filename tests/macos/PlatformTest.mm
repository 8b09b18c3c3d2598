#include "MacTest.hpp"
#include "frameworks/WindowServer.hpp"
#include "platform/Platform.hpp"

#include <gmock/gmock.h>

#include <cstdlib>

namespace orvel {
namespace {

using PlatformTest = MacTest;

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

}  // namespace
}  // namespace orvel
