#include "platform/macos/SystemDisplays.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvel {
namespace {

using testing::Contains;
using testing::Gt;

TEST(SystemDisplays, TheMainDisplayIsAtTheOriginAndOneOfAll) {
  const SystemDisplays displays;
  const auto layout = displays.layout();
  ASSERT_NE(layout, nullptr);
  EXPECT_EQ(layout->main.origin, Point());
  EXPECT_THAT(layout->main.size.width, Gt(0));
  EXPECT_THAT(layout->main.size.height, Gt(0));
  EXPECT_THAT(layout->screens, Contains(layout->main));
}

}  // namespace
}  // namespace orvel
