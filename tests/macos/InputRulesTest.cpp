#include "MacSession.hpp"
#include "MacTest.hpp"
#include "frameworks/Accessibility.hpp"
#include "frameworks/DisplayList.hpp"
#include "frameworks/OpenedURLs.hpp"
#include "frameworks/PowerManagement.hpp"
#include "frameworks/Quartz.hpp"
#include "frameworks/Trust.hpp"
#include "runtime/Dispatch.hpp"

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace orvel {
namespace {

using fake::QuartzEvent;
using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;

/// The rules of input, from the frames of a phone to the events of the system.
class InputRulesTest : public MacTest {
 protected:
  void SetUp() override {
    MacTest::SetUp();
    fake::quartz() = {};
    fake::quartz().pointer = {100, 100};
    fake::powerManagement() = {};
    fake::displayList() = {};
    fake::displayList().active = {{.id = 1, .bounds = {{0, 0}, {1440, 900}}},
                                  {.id = 2, .bounds = {{1440, 0}, {800, 600}}}};
    fake::accessibility() = {};
    fake::trust() = {.isGranted = true};
    fake::openedURLs() = {};
    mac_ = std::make_unique<MacSession>();
    mac_->authenticate();
    ASSERT_TRUE(mac_->session->authenticated());
  }

  void TearDown() override {
    mac_.reset();
    MacTest::TearDown();
  }

  void send(std::vector<std::uint8_t> frame) { mac_->phone->binary(std::move(frame)); }

  void sendText(const std::string& text) {
    mac_->clock.sleeps.clear();
    std::vector<std::uint8_t> frame = {5, static_cast<std::uint8_t>(text.size() & 0xff),
                                       static_cast<std::uint8_t>(text.size() >> 8)};
    frame.insert(frame.end(), text.begin(), text.end());
    send(std::move(frame));
    mac_->clock.runDue();
  }

  /// Motion of one tick, which is at most 127 points down, or as many up.
  void moveVertically(std::int8_t points) {
    const auto low = static_cast<std::uint8_t>(points);
    send({1, 0, 0, low, static_cast<std::uint8_t>(points < 0 ? 0xff : 0)});
    mac_->clock.advance(Seconds(0.008));
  }

  /// One snap of the pointer at 100, 100 beside an element whose centre is `distance` to its right.
  void snap(double distance, const std::string& role = "AXButton") {
    fake::accessibility().attributes.insert(
        {{"AXRole", role}, {"AXPosition", CGPoint{80 + distance, 90}}, {"AXSize", CGSize{40, 20}}});
    mac_->phone->text(R"({"t":"snap"})");
    mac_->clock.runDue();
  }

  std::vector<QuartzEvent>& posted_ = fake::quartz().posted;
  std::unique_ptr<MacSession> mac_;
};

auto isOfType(std::uint32_t type) {
  return Field(&QuartzEvent::type, type);
}

auto isAt(double x, double y) {
  return Field(&QuartzEvent::position, ElementsAre(x, y));
}

auto hasDeltas(std::int64_t x, std::int64_t y) {
  return Field(&QuartzEvent::fields, ElementsAre(Pair(4, x), Pair(5, y)));
}

auto isStroke(bool down, std::size_t units) {
  return AllOf(isOfType(down ? 10 : 11), Field(&QuartzEvent::key, 0), Field(&QuartzEvent::text, SizeIs(units)));
}

TEST_F(InputRulesTest, ADoubleClickIsAPressAndAReleaseOfStateTwo) {
  send({8, 0, 2});
  const auto isSecondClick = AllOf(isAt(100, 100), Field(&QuartzEvent::fields, ElementsAre(Pair(1, 2))));
  EXPECT_THAT(posted_, ElementsAre(AllOf(isOfType(1), isSecondClick), AllOf(isOfType(2), isSecondClick)));
}

TEST_F(InputRulesTest, AKeyHasTheModifiersOfItsFrame) {
  fake::quartz().heldModifiers = 0x80000;
  send({4, 8, 0, 1, 0x03});
  send({4, 8, 0, 0, 0});
  EXPECT_THAT(posted_, ElementsAre(AllOf(isOfType(10), Field(&QuartzEvent::flags, 0x120000)),
                                   AllOf(isOfType(11), Field(&QuartzEvent::flags, 0))));
}

TEST_F(InputRulesTest, EachBitOfAFrameIsAModifierOfItsOwn) {
  for (const std::uint8_t bit : {0x01, 0x02, 0x04, 0x08, 0x10}) send({4, 8, 0, 1, bit});
  const auto hasFlags = [](std::uint64_t flags) { return Field(&QuartzEvent::flags, flags); };
  EXPECT_THAT(posted_, ElementsAre(hasFlags(0x100000), hasFlags(0x20000), hasFlags(0x80000), hasFlags(0x40000),
                                   hasFlags(0x800000)));
}

TEST_F(InputRulesTest, AMediaKeyGoesDownAndUp) {
  send({6, 16});
  const auto isSpecial = AllOf(isOfType(14), isAt(0, 0), Field(&QuartzEvent::flags, 0xa00),
                               Field(&QuartzEvent::subtype, 8), Field(&QuartzEvent::data2, -1));
  EXPECT_THAT(posted_, ElementsAre(AllOf(isSpecial, Field(&QuartzEvent::data1, 0x100a00)),
                                   AllOf(isSpecial, Field(&QuartzEvent::data1, 0x100b00))));
}

TEST_F(InputRulesTest, AMediaKeyThatThereIsNotIsDropped) {
  send({6, 5});
  EXPECT_THAT(posted_, IsEmpty());
}

TEST_F(InputRulesTest, MotionOfOneTickIsOneEvent) {
  send({1, 3, 0, 0, 0});
  send({1, 0xff, 0xff, 2, 0});
  EXPECT_THAT(posted_, IsEmpty());
  mac_->clock.runDue();
  EXPECT_THAT(posted_, ElementsAre(AllOf(isOfType(5), isAt(102, 102), hasDeltas(2, 2))));
}

TEST_F(InputRulesTest, MotionStopsAtTheEdgeOfAllDisplays) {
  send({1, 0xff, 0x7f, 0xff, 0x7f});
  mac_->clock.runDue();
  EXPECT_THAT(posted_, ElementsAre(isAt(2239, 899)));
}

TEST_F(InputRulesTest, AbsoluteMotionEndsOnTheEdgeOfTheMainDisplay) {
  send({9, 0xff, 0xff, 0xff, 0xff});
  EXPECT_THAT(posted_, ElementsAre(AllOf(isOfType(5), isAt(1440, 900), hasDeltas(0, 0))));
}

TEST_F(InputRulesTest, AbsoluteMotionMeansTheMainDisplayAlthoughItIsTheSecond) {
  auto& list = fake::displayList();
  list.become({{.id = 2, .bounds = {{1440, 0}, {800, 600}}}, {.id = 1, .bounds = {{0, 0}, {1440, 900}}}}, 1);
  send({9, 0xff, 0xff, 0xff, 0xff});
  EXPECT_THAT(posted_, ElementsAre(isAt(1440, 900)));
}

TEST_F(InputRulesTest, AHeldLeftButtonDrags) {
  send({2, 0, 1});
  send({1, 5, 0, 0, 0});
  mac_->clock.runDue();
  EXPECT_THAT(posted_, ElementsAre(isOfType(1), AllOf(isOfType(6), isAt(105, 100), hasDeltas(5, 0))));
}

TEST_F(InputRulesTest, AHeldMiddleButtonDoesNotDrag) {
  send({2, 2, 1});
  send({1, 5, 0, 0, 0});
  mac_->clock.runDue();
  EXPECT_THAT(posted_, ElementsAre(AllOf(isOfType(25), Field(&QuartzEvent::button, 2)), isOfType(5)));
}

TEST_F(InputRulesTest, AClickIsWhereThePointerWasPutAlthoughItArrivesLate) {
  fake::quartz().isSlow = true;
  send({9, 0xff, 0x7f, 0, 0});
  send({8, 0, 1});
  ASSERT_THAT(posted_, SizeIs(3));
  EXPECT_NEAR(posted_[0].position[0], 720, 1);
  EXPECT_EQ(posted_[1].position, posted_[0].position);
  EXPECT_EQ(posted_[2].position, posted_[0].position);
}

TEST_F(InputRulesTest, MotionAddsUpAlthoughThePointerArrivesLate) {
  fake::quartz().isSlow = true;
  for (int tick = 0; tick < 3; ++tick) {
    send({1, 10, 0, 0, 0});
    mac_->clock.advance(Seconds(0.008));
  }
  EXPECT_THAT(posted_, ElementsAre(isAt(110, 100), isAt(120, 100), isAt(130, 100)));
}

TEST_F(InputRulesTest, MotionAddsUpAlthoughEachPlaceArrivesLate) {
  fake::quartz().isSlow = true;
  for (int tick = 1; tick <= 100; ++tick) {
    moveVertically(1);
    if (tick > 12) fake::letPointerArrive(1);
  }
  EXPECT_THAT(posted_.back(), isAt(100, 200));
}

TEST_F(InputRulesTest, ThePointerTurnsAtOnceWhereItWasPushedAgainstAGapBetweenDisplays) {
  fake::quartz().pointer = {1500, 500};
  for (int tick = 0; tick < 100; ++tick) moveVertically(40);
  ASSERT_THAT(fake::quartz().pointer, ElementsAre(1500, 599)) << "the second display ends above the first";
  moveVertically(-10);
  EXPECT_THAT(posted_.back(), isAt(1500, 589));
  EXPECT_THAT(fake::quartz().pointer, ElementsAre(1500, 589));
  moveVertically(-10);
  EXPECT_THAT(fake::quartz().pointer, ElementsAre(1500, 579));
}

TEST_F(InputRulesTest, ThePointerTurnsSoonWhereItIsLateAndWasPushedAgainstAGap) {
  fake::quartz().pointer = {1500, 500};
  fake::quartz().isSlow = true;
  for (int tick = 1; tick <= 100; ++tick) {
    moveVertically(40);
    if (tick > 5) fake::letPointerArrive(1);
  }
  for (int tick = 0; tick < 20; ++tick) {
    moveVertically(-10);
    fake::letPointerArrive(1);
  }
  fake::letPointerArrive(5);
  EXPECT_LE(fake::quartz().pointer[1], 599 - 100) << "half of the way back at least";
}

TEST_F(InputRulesTest, ADisplayThatSleepsWakesForAPhone) {
  fake::powerManagement().displaySleeps = true;
  send({1, 10, 0, 0, 0});
  mac_->clock.runDue();
  dispatch::turnGlobalQueues();
  EXPECT_FALSE(fake::powerManagement().displaySleeps);
}

TEST_F(InputRulesTest, ADisplayThatSleepsDoesNotWakeForAPhoneThatLeaves) {
  send({2, 0, 1});
  send({4, 8, 0, 1, 0});
  dispatch::turnGlobalQueues();
  mac_->clock.advance(Seconds(60));
  fake::powerManagement().displaySleeps = true;
  mac_->phone->drop();
  mac_->clock.runDue();
  dispatch::turnGlobalQueues();
  EXPECT_THAT(posted_, testing::IsSupersetOf({isOfType(2), isOfType(11)}));
  EXPECT_TRUE(fake::powerManagement().displaySleeps);
}

TEST_F(InputRulesTest, WithoutThePermissionNoDisplayWakes) {
  fake::trust().isGranted = false;
  mac_->permission.refresh();
  fake::powerManagement().displaySleeps = true;
  send({8, 0, 1});
  mac_->clock.runDue();
  dispatch::turnGlobalQueues();
  EXPECT_TRUE(fake::powerManagement().displaySleeps);
}

TEST_F(InputRulesTest, ScrollIsBounded) {
  send({3, 0x88, 0x13, 0x78, 0xec});
  EXPECT_THAT(posted_, ElementsAre(Field(&QuartzEvent::wheels, ElementsAre(-4000, 4000))));
}

TEST_F(InputRulesTest, TextGoesOutInPiecesWithAPauseAfterEach) {
  sendText(std::string(40, 'x'));
  EXPECT_THAT(posted_, ElementsAre(isStroke(true, 16), isStroke(false, 16), isStroke(true, 16), isStroke(false, 16),
                                   isStroke(true, 8), isStroke(false, 8)));
  EXPECT_THAT(mac_->clock.sleeps, ElementsAre(Seconds(0.002), Seconds(0.002), Seconds(0.002)));
}

TEST_F(InputRulesTest, SixteenCharactersThatAreTooLongForOneEventArriveWhole) {
  std::string text;
  std::u16string expected;
  for (int at = 0; at < 16; ++at) {
    text += "👨‍👩‍👧‍👦";
    expected += u"👨‍👩‍👧‍👦";
  }
  sendText(text);
  ASSERT_THAT(posted_, SizeIs(32));
  std::u16string pressed;
  for (std::size_t at = 0; at < posted_.size(); at += 2) {
    pressed += posted_[at].text;
    EXPECT_EQ(posted_[at].type, 10u);
    EXPECT_EQ(posted_[at + 1].type, 11u);
    EXPECT_EQ(posted_[at].text, posted_[at + 1].text);
  }
  EXPECT_EQ(pressed, expected);
  EXPECT_THAT(mac_->clock.sleeps, ElementsAre(Seconds(0.002)));
}

TEST_F(InputRulesTest, APieceOfATextOfWhichOneEventCannotBeMadeIsLeftOut) {
  fake::quartz().creationsLeft = 3;
  sendText(std::string(16, 'x') + std::string(16, 'y'));
  EXPECT_THAT(posted_, ElementsAre(isStroke(true, 16), isStroke(false, 16)));
  EXPECT_EQ(posted_.back().text, std::u16string(16, u'x'));
}

TEST_F(InputRulesTest, APieceOfATextWhosePressCannotBeMadeIsNotReleased) {
  fake::quartz().creationsToFail = 1;
  sendText("x");
  EXPECT_THAT(posted_, IsEmpty());
}

TEST_F(InputRulesTest, WithoutThePermissionNothingIsPosted) {
  fake::trust().isGranted = false;
  mac_->permission.refresh();
  fake::trust().isGranted = true;
  send({8, 0, 1});
  send({1, 5, 0, 5, 0});
  send({6, 16});
  sendText("text");
  snap(50);
  mac_->clock.advance(Seconds(0.1));
  EXPECT_THAT(posted_, IsEmpty());
  mac_->permission.refresh();
  send({8, 0, 1});
  EXPECT_THAT(posted_, SizeIs(2));
}

TEST_F(InputRulesTest, APermissionThatIsAskedForCountsOnceItIsSeen) {
  fake::trust().isGranted = false;
  mac_->permission.refresh();
  mac_->permission.request();
  EXPECT_EQ(fake::trust().prompts, 1);
  EXPECT_THAT(fake::openedURLs().all, SizeIs(1));
  fake::trust().isGranted = true;
  EXPECT_FALSE(mac_->permission.cachedTrust());
  EXPECT_TRUE(mac_->permission.refresh());
}

TEST_F(InputRulesTest, WhatAPhoneHoldsIsReleasedWhenItLeaves) {
  send({2, 1, 1});
  send({4, 8, 0, 1, 0x01});
  posted_.clear();
  mac_->phone->drop();
  mac_->clock.runDue();
  EXPECT_THAT(posted_, testing::UnorderedElementsAre(
                           AllOf(isOfType(4), isAt(100, 100), Field(&QuartzEvent::fields, ElementsAre(Pair(1, 1)))),
                           AllOf(isOfType(11), Field(&QuartzEvent::key, 8))));
}

TEST_F(InputRulesTest, ThePointerGlidesToTheCentreOfAButton) {
  snap(50);
  ASSERT_THAT(posted_, SizeIs(6));
  EXPECT_THAT(posted_, Each(AllOf(isOfType(5), hasDeltas(0, 0))));
  EXPECT_THAT(posted_.back(), isAt(150, 100));
}

TEST_F(InputRulesTest, ThePointerGlidesWithWhatItDrags) {
  send({2, 0, 1});
  posted_.clear();
  snap(50);
  ASSERT_THAT(posted_, SizeIs(6));
  EXPECT_THAT(posted_, Each(isOfType(6)));
}

TEST_F(InputRulesTest, ThePointerStaysWhenItIsThereOrFarAway) {
  snap(2);
  fake::accessibility().attributes.clear();
  snap(111);
  EXPECT_THAT(fake::accessibility().searches, SizeIs(2));
  EXPECT_THAT(posted_, IsEmpty());
}

TEST_F(InputRulesTest, ThePointerStaysInATextField) {
  snap(50, "AXTextField");
  EXPECT_THAT(fake::accessibility().searches, SizeIs(1));
  EXPECT_THAT(posted_, IsEmpty());
}

TEST_F(InputRulesTest, ThePointerStaysWhereAnElementHasNoSize) {
  fake::accessibility().attributes["AXSize"] = kAXErrorNoValue;
  snap(50);
  EXPECT_THAT(fake::accessibility().searches, SizeIs(1));
  EXPECT_THAT(posted_, IsEmpty());
}

}  // namespace
}  // namespace orvel
