#include "MacTest.hpp"
#include "frameworks/AppleEvents.hpp"
#include "frameworks/Application.hpp"
#include "frameworks/MessagePort.hpp"
#include "platform/macos/SystemInstance.hpp"
#include "runtime/Foundation.hpp"

#include <gmock/gmock.h>

#include <optional>
#include <string>
#include <vector>

namespace orvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr AEEventClass core = 0x61657674;    // 'aevt'
constexpr AEEventID reopening = 0x72617070;  // 'rapp'
const std::string portName = "app.orvel.Orvel";

class InstanceTest : public MacTest {
 protected:
  void SetUp() override {
    MacTest::SetUp();
    fake::messagePorts() = {};
    fake::appleEvents() = {};
    instance_.emplace();
  }

  void TearDown() override {
    instance_.reset();
    MacTest::TearDown();
  }

  bool claim() {
    return instance_->claim([this](const std::string& token) { shown_.push_back(token); });
  }

  std::optional<SystemInstance> instance_;
  std::vector<std::string> shown_;
};

TEST_F(InstanceTest, TheFirstOneRuns) {
  EXPECT_TRUE(claim());
  EXPECT_EQ(fake::servedPort(), portName);
  EXPECT_THAT(shown_, IsEmpty());
  EXPECT_EQ(instance_->token(), "");
}

TEST_F(InstanceTest, TheSecondOneDoesNotAndTheTerminalStaysClean) {
  fake::messagePorts().takenName = portName;
  EXPECT_FALSE(claim());
  EXPECT_EQ(fake::messagePorts().complaints, 0);
  fake::finishLaunching();
  EXPECT_FALSE(fake::sendAppleEvent(core, reopening));
}

TEST_F(InstanceTest, OneThatIsFasterIsSeen) {
  fake::messagePorts().takenBetweenChecks = true;
  EXPECT_FALSE(claim());
}

TEST_F(InstanceTest, ItsPlaceIsFreeAgainWhenTheOtherHasEnded) {
  fake::messagePorts().takenName = portName;
  EXPECT_FALSE(claim());
  fake::messagePorts().takenName = "";
  EXPECT_TRUE(claim());
  EXPECT_EQ(fake::servedPort(), portName);
}

TEST_F(InstanceTest, WhereThereAreNoPortsEveryOneIsTheFirst) {
  fake::messagePorts().givesNone = true;
  EXPECT_TRUE(claim());
  fake::messagePorts() = {};
  fake::messagePorts().givesNoSource = true;
  instance_.emplace();
  EXPECT_TRUE(claim());
  EXPECT_EQ(fake::servedPort(), "");
}

TEST_F(InstanceTest, AnotherStartShowsThePanel) {
  claim();
  EXPECT_TRUE(fake::messageOurPort());
  EXPECT_THAT(shown_, ElementsAre(""));
  EXPECT_TRUE(fake::messageOurPort());
  EXPECT_EQ(shown_.size(), 2U);
}

TEST_F(InstanceTest, NobodyIsServedAfterItsEnd) {
  claim();
  instance_.reset();
  EXPECT_FALSE(fake::messageOurPort());
  EXPECT_EQ(fake::servedPort(), "");
}

TEST_F(InstanceTest, ShowsTheOneThatRunsAndWaitsASecondEachWay) {
  fake::messagePorts().takenName = portName;
  EXPECT_TRUE(instance_->showOther());
  EXPECT_EQ(fake::messagePorts().sentTo, portName);
  EXPECT_EQ(fake::messagePorts().sendTimeout, 1);
  EXPECT_EQ(fake::messagePorts().receiveTimeout, 1);
  EXPECT_NE(fake::messagePorts().waitedIn, "kCFRunLoopDefaultMode") << "the toolkit's own sources would run, too";
}

TEST_F(InstanceTest, SaysWhenNoneRunsOrItIsSilent) {
  EXPECT_FALSE(instance_->showOther());
  fake::messagePorts().takenName = portName;
  for (const SInt32 failure : {-1, -2, -3, -4}) {
    fake::messagePorts().answer = failure;
    EXPECT_FALSE(instance_->showOther()) << failure;
  }
  fake::messagePorts().answer = 0;
  fake::messagePorts().answersWithData = false;
  EXPECT_FALSE(instance_->showOther());
}

TEST_F(InstanceTest, OpeningTheApplicationAgainShowsThePanel) {
  claim();
  EXPECT_FALSE(fake::sendAppleEvent(core, reopening)) << "the application's own handlers are not in place yet";
  fake::finishLaunching();
  EXPECT_TRUE(fake::sendAppleEvent(core, reopening));
  EXPECT_THAT(shown_, ElementsAre(""));
}

TEST_F(InstanceTest, GivesTheAppleEventBackAtTheEnd) {
  claim();
  fake::finishLaunching();
  instance_.reset();
  EXPECT_EQ(fake::appleEvents().removed, 1);
  EXPECT_EQ(objectivec::observerCount(NSNotificationCenter.defaultCenter), 0U);
}

TEST_F(InstanceTest, LeavesTheAppleEventAloneWhenItNeverHadIt) {
  claim();
  fake::appleEvents() = {.handler = NSNotificationCenter.defaultCenter, .type = core, .event = reopening};
  instance_.reset();
  EXPECT_EQ(fake::appleEvents().removed, 0);
  EXPECT_EQ(objectivec::observerCount(NSNotificationCenter.defaultCenter), 0U);
}

}  // namespace
}  // namespace orvel
