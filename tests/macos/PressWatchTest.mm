#include "MacTest.hpp"
#include "frameworks/EventMonitor.hpp"
#include "platform/macos/SystemPressWatch.hpp"

#include <memory>
#include <optional>
#include <string>

namespace orvel {
namespace {

class PressWatchTest : public MacTest {
 protected:
  void TearDown() override {
    watch_.reset();
    fake::refuseMonitors(false);
    MacTest::TearDown();
  }

  std::optional<SystemPressWatch> watch_{std::in_place};
  int presses_ = 0;
};

TEST_F(PressWatchTest, ReportsEveryButtonPressedElsewhere) {
  watch_->begin([this] { ++presses_; });
  fake::sendToMonitors(NSEventMaskLeftMouseDown);
  fake::sendToMonitors(NSEventMaskRightMouseDown);
  fake::sendToMonitors(NSEventMaskOtherMouseDown);
  EXPECT_EQ(presses_, 3);
  fake::sendToMonitors(NSEventMaskLeftMouseUp);
  EXPECT_EQ(presses_, 3);
  watch_->end();
}

TEST_F(PressWatchTest, ListensOnlyUntilItsEnd) {
  watch_->begin([this] { ++presses_; });
  EXPECT_EQ(fake::monitorCount(), 1U);
  watch_->end();
  watch_->end();
  EXPECT_EQ(fake::monitorCount(), 0U);
  fake::sendToMonitors(NSEventMaskLeftMouseDown);
  EXPECT_EQ(presses_, 0);
}

TEST_F(PressWatchTest, TheHandlerMayEndIt) {
  watch_->begin([this, big = std::string(100, 'x')] {
    watch_->end();
    presses_ += static_cast<int>(big.size());
  });
  fake::sendToMonitors(NSEventMaskLeftMouseDown);
  EXPECT_EQ(presses_, 100);
  EXPECT_EQ(fake::monitorCount(), 0U);
}

TEST_F(PressWatchTest, KeepsNothingOnceItHasEnded) {
  const auto kept = std::make_shared<int>();
  watch_->begin([kept] {});
  watch_->end();
  EXPECT_EQ(kept.use_count(), 1);
}

TEST_F(PressWatchTest, BeginsAnew) {
  watch_->begin([this] { ++presses_; });
  watch_->begin([this] { presses_ += 10; });
  fake::sendToMonitors(NSEventMaskLeftMouseDown);
  EXPECT_EQ(presses_, 10);
  watch_->end();
}

TEST_F(PressWatchTest, EndsWithTheProgram) {
  watch_->begin([this] { ++presses_; });
  watch_.reset();
  EXPECT_EQ(fake::monitorCount(), 0U);
}

TEST_F(PressWatchTest, ReportsNothingWithoutAMonitorOfTheSystem) {
  fake::refuseMonitors(true);
  watch_->begin([this] { ++presses_; });
  fake::sendToMonitors(NSEventMaskLeftMouseDown);
  EXPECT_EQ(presses_, 0);
  watch_->end();
}

}  // namespace
}  // namespace orvel
