#include "platform/macos/SystemWorkspace.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace orvel {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Field;
using testing::Optional;
using testing::StrEq;

// It is in every login.
constexpr const char* finder = "com.apple.finder";

TEST(SystemWorkspace, ListsTheFinder) {
  SystemWorkspace workspace;
  EXPECT_THAT(workspace.runningApplications(),
              Optional(Contains(AllOf(Field(&RunningApplication::identifier, Optional(StrEq(finder))),
                                      Field(&RunningApplication::isRegular, true)))));
}

TEST(SystemWorkspace, DrawsTheFindersIcon) {
  SystemWorkspace workspace;
  const auto location = workspace.location(finder);
  ASSERT_TRUE(location);
  const auto icon = workspace.icon(*location, 64);
  ASSERT_TRUE(icon);
  ASSERT_GT(icon->size(), 4u);
  EXPECT_THAT(std::vector<std::uint8_t>(icon->begin(), icon->begin() + 4), ElementsAre(0x89, 'P', 'N', 'G'));
}

TEST(SystemWorkspace, KnowsNoPlaceOfWhatThereIsNot) {
  EXPECT_EQ(SystemWorkspace().location("app.orvel.nowhere"), std::nullopt);
}

}  // namespace
}  // namespace orvel
