#include "app/ServerHub.hpp"
#include "app/Wakefulness.hpp"
#include "fakes/RecordingActivity.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>

namespace orvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

struct WakefulnessTest : testing::Test {
  RecordingActivity activity;
  std::optional<Wakefulness> wakefulness{std::in_place, activity};
};

TEST_F(WakefulnessTest, IsNotWantedWithoutAPhone) {
  wakefulness->follow({.isRunning = true});
  wakefulness.reset();
  EXPECT_THAT(activity.begun, IsEmpty());
  EXPECT_EQ(activity.ended, 0);
}

TEST_F(WakefulnessTest, LastsFromTheFirstPhoneToTheLast) {
  wakefulness->follow({.clients = {"a"}});
  wakefulness->follow({.clients = {"a", "b"}});
  wakefulness->follow({.clients = {"b"}, .mirroring = true});
  EXPECT_THAT(activity.begun, ElementsAre("A phone is connected"));
  EXPECT_EQ(activity.ended, 0);
  wakefulness->follow({});
  EXPECT_EQ(activity.ended, 1);
}

TEST_F(WakefulnessTest, BeginsAnewWithTheNextPhone) {
  wakefulness->follow({.clients = {"a"}});
  wakefulness->follow({});
  wakefulness->follow({.clients = {"a"}});
  EXPECT_EQ(activity.begun.size(), 2U);
}

TEST_F(WakefulnessTest, DoesNotOutliveTheApplication) {
  wakefulness->follow({.clients = {"a"}});
  wakefulness.reset();
  EXPECT_EQ(activity.ended, 1);
}

}  // namespace
}  // namespace orvel
