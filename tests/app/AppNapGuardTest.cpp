#include "app/AppNapGuard.hpp"
#include "app/ServerHub.hpp"
#include "fakes/RecordingActivity.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

namespace orvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct AppNapGuardTest : testing::Test {
  RecordingActivity activity;
  std::optional<AppNapGuard> guard{std::in_place, activity};
};

TEST_F(AppNapGuardTest, IsNotWantedWithoutAPhone) {
  guard->follow({.isRunning = true});
  guard.reset();
  EXPECT_THAT(activity.begun, IsEmpty());
  EXPECT_EQ(activity.ended, 0);
}

TEST_F(AppNapGuardTest, LastsFromTheFirstPhoneToTheLast) {
  guard->follow({.clients = {"a"}});
  guard->follow({.clients = {"a", "b"}});
  guard->follow({.clients = {"b"}, .mirroring = true});
  EXPECT_THAT(activity.begun, ElementsAre("A phone is connected"));
  EXPECT_EQ(activity.ended, 0);
  guard->follow({});
  EXPECT_EQ(activity.ended, 1);
}

TEST_F(AppNapGuardTest, BeginsAnewWithTheNextPhone) {
  guard->follow({.clients = {"a"}});
  guard->follow({});
  guard->follow({.clients = {"a"}});
  EXPECT_EQ(activity.begun.size(), 2U);
}

TEST_F(AppNapGuardTest, DoesNotOutliveTheApplication) {
  guard->follow({.clients = {"a"}});
  guard.reset();
  EXPECT_EQ(activity.ended, 1);
}

}  // namespace
}  // namespace orvel
