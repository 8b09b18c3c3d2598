#include "MacTest.hpp"
#include "frameworks/ProcessActivity.hpp"
#include "platform/macos/SystemActivity.hpp"

#include <gmock/gmock.h>

#include <optional>

namespace orvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ActivityTest : public MacTest {
 protected:
  void SetUp() override {
    MacTest::SetUp();
    fake::activities().clear();
  }

  void TearDown() override {
    activity_.reset();
    MacTest::TearDown();
  }

  std::optional<SystemActivity> activity_{std::in_place};
};

// As the reference pages have it: begun by the user, though the Mac may sleep.
constexpr NSActivityOptions wanted = 0x00EFFFFF;

TEST_F(ActivityTest, IsOneOfTheUsersThatLetsTheMacSleep) {
  EXPECT_TRUE(activity_->begin("A phone is connected"));
  EXPECT_THAT(fake::activities(), ElementsAre(fake::BegunActivity{wanted, "A phone is connected"}));
  activity_->end();
  EXPECT_THAT(fake::activities(), IsEmpty());
}

TEST_F(ActivityTest, EndsOnceAndOnlyWhatBegan) {
  activity_->end();
  activity_->begin("one");
  activity_->end();
  activity_->end();
  activity_->begin("two");
  EXPECT_EQ(fake::activities().size(), 1U);
  activity_->end();
}

TEST_F(ActivityTest, OneFollowsTheOther) {
  activity_->begin("one");
  activity_->begin("two");
  EXPECT_THAT(fake::activities(), ElementsAre(fake::BegunActivity{wanted, "two"}));
  activity_->end();
}

TEST_F(ActivityTest, HasAReasonThatCanBeRead) {
  activity_->begin("one");
  EXPECT_FALSE(activity_->begin("\xff"));
  EXPECT_THAT(fake::activities(), ElementsAre(fake::BegunActivity{wanted, "one"}));
}

TEST_F(ActivityTest, EndsWithTheProgram) {
  activity_->begin("one");
  activity_.reset();
  EXPECT_THAT(fake::activities(), IsEmpty());
}

}  // namespace
}  // namespace orvel
