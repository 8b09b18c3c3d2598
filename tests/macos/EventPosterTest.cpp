#include "MacTest.hpp"
#include "fakes/FakeClock.hpp"
#include "frameworks/DisplayList.hpp"
#include "frameworks/PowerManagement.hpp"
#include "frameworks/Quartz.hpp"
#include "platform/macos/SystemEventPoster.hpp"
#include "runtime/Dispatch.hpp"

#include <gmock/gmock.h>

#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace orvel {
namespace {

using fake::QuartzEvent;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class EventPosterTest : public MacTest {
 protected:
  void SetUp() override {
    MacTest::SetUp();
    fake::quartz() = {};
    fake::powerManagement() = {};
    fake::displayList() = {};
  }

  /// One of each kind but text.
  std::vector<bool> postAll() {
    return {poster_.post(MouseEvent{.position = Point{}}),
            poster_.post(MouseEvent{.type = MouseEventType::leftDown, .position = Point{}, .clickState = 1}),
            poster_.post(ScrollEvent{}), poster_.post(KeyEvent{}), poster_.post(SystemDefinedEvent{})};
  }

  bool type(const std::u16string& text) { return poster_.post(TextEvent{.text = text}); }

  void moveTo(double x, double y) { ASSERT_TRUE(poster_.post(MouseEvent{.position = Point{x, y}})); }

  static std::size_t declarations() {
    dispatch::turnGlobalQueues();
    return fake::powerManagement().activities.size();
  }

  std::vector<QuartzEvent>& posted_ = fake::quartz().posted;
  FakeClock clock_;
  SystemEventPoster poster_{clock_};
};

QuartzEvent stroke(std::u16string text, bool down) {
  QuartzEvent event;
  event.tap = kCGHIDEventTap;
  event.type = down ? 10 : 11;
  event.text = std::move(text);
  return event;
}

TEST_F(EventPosterTest, APressOrReleaseHasItsClickStateAndNoDeltas) {
  const std::pair<MouseEventType, int> cases[] = {
      {MouseEventType::leftDown, 0}, {MouseEventType::leftUp, 0},    {MouseEventType::rightDown, 1},
      {MouseEventType::rightUp, 1},  {MouseEventType::otherDown, 2}, {MouseEventType::otherUp, 2},
  };
  for (const auto& [type, button] : cases) {
    ASSERT_TRUE(poster_.post(MouseEvent{.type = type,
                                        .buttonCode = static_cast<std::uint8_t>(button),
                                        .position = Point{-3.5, 7.25},
                                        .clickState = 2}));
    const QuartzEvent& event = posted_.back();
    EXPECT_EQ(event.tap, kCGHIDEventTap);
    EXPECT_EQ(event.type, static_cast<std::uint32_t>(type));
    EXPECT_EQ(event.button, static_cast<std::uint32_t>(button));
    EXPECT_THAT(event.position, ElementsAre(-3.5, 7.25));
    EXPECT_THAT(event.fields, ElementsAre(std::pair(1U, 2)));
  }
}

TEST_F(EventPosterTest, MotionHasItsDeltasEvenWhenTheyAreNone) {
  const MouseEventType types[] = {MouseEventType::moved, MouseEventType::leftDragged, MouseEventType::rightDragged};
  for (const MouseEventType type : types) {
    ASSERT_TRUE(
        poster_.post(MouseEvent{.type = type, .buttonCode = 1, .position = Point{}, .deltaX = -40'000, .deltaY = 0}));
    EXPECT_EQ(posted_.back().type, static_cast<std::uint32_t>(type));
    EXPECT_EQ(posted_.back().button, 1u) << "as given, even where the type says another";
    EXPECT_THAT(posted_.back().fields, ElementsAre(std::pair(4U, -40'000), std::pair(5U, 0)));
  }
}

TEST_F(EventPosterTest, MouseEventsKeepTheModifiersTheyWereMadeWith) {
  fake::quartz().heldModifiers = 0x20000;
  poster_.post(MouseEvent{.position = Point{}});
  EXPECT_EQ(posted_.back().flags, 0x20000u);
}

TEST_F(EventPosterTest, TheVerticalWheelIsTheFirstOfTwo) {
  ASSERT_TRUE(poster_.post(ScrollEvent{.wheel1 = -4000, .wheel2 = 17}));
  EXPECT_EQ(posted_.back().tap, kCGHIDEventTap);
  EXPECT_EQ(posted_.back().scrollUnit, kCGScrollEventUnitPixel);
  EXPECT_THAT(posted_.back().wheels, ElementsAre(-4000, 17));
}

TEST_F(EventPosterTest, AKeyHasItsOwnModifiersOnly) {
  fake::quartz().heldModifiers = 0x40000;
  ASSERT_TRUE(poster_.post(KeyEvent{.keyCode = 0x1234, .down = true, .flags = 0x120000}));
  ASSERT_TRUE(poster_.post(KeyEvent{.keyCode = 0x1234, .down = false, .flags = 0}));
  ASSERT_THAT(posted_, SizeIs(2));
  EXPECT_EQ(posted_[0].tap, kCGHIDEventTap);
  EXPECT_EQ(posted_[0].type, 10u);
  EXPECT_EQ(posted_[0].key, 0x1234);
  EXPECT_EQ(posted_[0].flags, 0x120000u);
  EXPECT_EQ(posted_[1].type, 11u);
  EXPECT_EQ(posted_[1].flags, 0u);
}

TEST_F(EventPosterTest, EveryModifierOfAKeyArrives) {
  for (const std::uint64_t flag : {0x20000, 0x40000, 0x80000, 0x100000, 0x800000}) {
    ASSERT_TRUE(poster_.post(KeyEvent{.keyCode = 8, .down = true, .flags = flag}));
    EXPECT_EQ(posted_.back().flags, flag);
  }
}

TEST_F(EventPosterTest, AReleaseWhileOthersHoldTheKeyIsNoEvent) {
  EXPECT_TRUE(poster_.post(KeyEvent{.keyCode = 8, .down = false, .staysDown = true}));
  EXPECT_THAT(posted_, IsEmpty());
}

TEST_F(EventPosterTest, ASystemDefinedEventIsOneOfNoPlaceAndNoTime) {
  const SystemDefinedEvent event{.flags = 0xa00, .subtype = 8, .data1 = 0x100b00, .data2 = -1};
  ASSERT_TRUE(poster_.post(event));
  QuartzEvent expected;
  expected.tap = kCGHIDEventTap;
  expected.type = 14;
  expected.flags = 0xa00;
  expected.subtype = 8;
  expected.data1 = 0x100b00;
  expected.data2 = -1;
  EXPECT_THAT(posted_, ElementsAre(expected));
}

TEST_F(EventPosterTest, ASystemDefinedEventThatCannotBeConvertedIsNotPosted) {
  fake::quartz().creationsLeft = 1;
  EXPECT_FALSE(poster_.post(SystemDefinedEvent{}));
  EXPECT_THAT(posted_, IsEmpty());
}

TEST_F(EventPosterTest, EventsOfAllKindsKeepTheirOrderOnAnyThread) {
  std::vector<bool> results;
  std::thread([&] {
    results = postAll();
    results.push_back(type(u"a"));
    results.push_back(poster_.pointerLocation().has_value());
  }).join();
  EXPECT_THAT(results, ElementsAre(true, true, true, true, true, true, true));
  std::vector<std::uint32_t> types;
  for (const QuartzEvent& event : posted_) types.push_back(event.type);
  EXPECT_THAT(types, ElementsAre(5, 1, 22, 11, 14, 10, 11));
}

TEST_F(EventPosterTest, WhatCannotBeMadeIsNotPosted) {
  fake::quartz().creationsLeft = 0;
  EXPECT_THAT(postAll(), ElementsAre(false, false, false, false, false));
  EXPECT_FALSE(type(u"a"));
  EXPECT_THAT(posted_, IsEmpty());
}

TEST_F(EventPosterTest, ThePointerIsWhereABlankEventIs) {
  fake::quartz().pointer = {12.5, -3};
  EXPECT_EQ(poster_.pointerLocation(), (Point{12.5, -3}));
  EXPECT_THAT(posted_, IsEmpty());
}

TEST_F(EventPosterTest, WithoutABlankEventThePointerIsNowhere) {
  fake::quartz().creationsLeft = 0;
  EXPECT_EQ(poster_.pointerLocation(), std::nullopt);
}

TEST_F(EventPosterTest, AnEventWithoutAPositionIsNotPosted) {
  EXPECT_FALSE(poster_.post(MouseEvent{.deltaX = 3, .deltaY = 4}));
  EXPECT_FALSE(poster_.post(MouseEvent{.type = MouseEventType::leftDown, .clickState = 1}));
  EXPECT_THAT(posted_, IsEmpty()) << "rather than in a corner that nobody meant";
}

TEST_F(EventPosterTest, ThePointerIsWhereItWasPutAlthoughTheSystemIsBehind) {
  fake::quartz().pointer = {100, 100};
  fake::quartz().isSlow = true;
  moveTo(200, 100);
  moveTo(300, 150);
  moveTo(310, 160);
  for (int arrived = 0; arrived <= 3; ++arrived) {
    EXPECT_EQ(poster_.pointerLocation(), (Point{310, 160})) << arrived;
    fake::letPointerArrive(1);
  }
}

TEST_F(EventPosterTest, ASlowPointerThatSomebodyElseMovesIsWhereTheyMovedIt) {
  fake::quartz().pointer = {100, 100};
  fake::quartz().isSlow = true;
  moveTo(200, 100);
  fake::quartz().pointer = {40, 60};
  EXPECT_EQ(poster_.pointerLocation(), (Point{40, 60}));
  fake::quartz().pointer = {100, 100};
  EXPECT_EQ(poster_.pointerLocation(), (Point{100, 100})) << "back where it was before, by hand";
}

TEST_F(EventPosterTest, APointerThatNeverArrivesIsWhereTheSystemSays) {
  fake::quartz().pointer = {100, 100};
  fake::quartz().isSlow = true;
  moveTo(200, 100);
  clock_.advance(Seconds(0.19));
  EXPECT_EQ(poster_.pointerLocation(), (Point{200, 100}));
  clock_.advance(Seconds(0.02));
  EXPECT_EQ(poster_.pointerLocation(), (Point{100, 100}));
}

TEST_F(EventPosterTest, APointerThatIsKeptOnTheDisplayIsWhereTheSystemSays) {
  fake::quartz().isSlow = true;
  moveTo(1440, 900);
  fake::quartz().pointer = {1439.75, 899.75};
  EXPECT_EQ(poster_.pointerLocation(), (Point{1439.75, 899.75}));
}

TEST_F(EventPosterTest, AThousandPlacesWithoutAQuestionStillEndAtTheLast) {
  fake::quartz().isSlow = true;
  for (int x = 1; x <= 1000; ++x) moveTo(10 * x, 0);
  fake::letPointerArrive(990);
  EXPECT_EQ(poster_.pointerLocation(), (Point{10'000, 0}));
}

TEST_F(EventPosterTest, ThePlaceThatThePointerIsKeptAtCountsHoweverOftenItIsPutElsewhere) {
  fake::quartz().pointer = {100, 100};
  fake::quartz().isSlow = true;
  for (int tick = 0; tick < 100; ++tick) {
    const auto before = poster_.pointerLocation();
    ASSERT_TRUE(before);
    if (tick * 0.008 > 0.21) {
      EXPECT_EQ(*before, (Point{100, 100})) << tick;
    }
    moveTo(before->x, before->y + 10);
    clock_.advance(Seconds(0.008));
  }
}

TEST_F(EventPosterTest, APlaceCountsAsReachedForAsLongAsTheNextIsYoung) {
  fake::quartz().pointer = {100, 100};
  fake::quartz().isSlow = true;
  moveTo(200, 100);
  clock_.advance(Seconds(0.15));
  moveTo(300, 100);
  fake::letPointerArrive(1);
  clock_.advance(Seconds(0.15));
  EXPECT_EQ(poster_.pointerLocation(), (Point{300, 100})) << "the system has had 0.15 s for it";
  clock_.advance(Seconds(0.04));
  moveTo(400, 100);
  EXPECT_EQ(poster_.pointerLocation(), (Point{400, 100}));
  clock_.advance(Seconds(0.02));
  EXPECT_EQ(poster_.pointerLocation(), (Point{200, 100})) << "it has had 0.21 s for the second";
}

TEST_F(EventPosterTest, APointerThatWasKeptMayBeLateAgainOnceItHasMoved) {
  fake::quartz().pointer = {100, 100};
  fake::quartz().isSlow = true;
  moveTo(100, 110);
  clock_.advance(Seconds(0.15));
  moveTo(100, 120);
  clock_.advance(Seconds(0.06));
  ASSERT_EQ(poster_.pointerLocation(), (Point{100, 100}));
  moveTo(100, 90);
  EXPECT_EQ(poster_.pointerLocation(), (Point{100, 100})) << "still kept, for all that is known";
  moveTo(100, 80);
  fake::quartz().pointer = {100, 90};
  EXPECT_EQ(poster_.pointerLocation(), (Point{100, 80}));
  moveTo(100, 100);
  moveTo(100, 110);
  fake::quartz().pointer = {100, 100};
  EXPECT_EQ(poster_.pointerLocation(), (Point{100, 110})) << "where it was kept before";
}

TEST_F(EventPosterTest, ADisplayThatSleepsWakesForInputOfEveryKind) {
  for (std::size_t kind = 0; kind < 6; ++kind) {
    fake::powerManagement().displaySleeps = true;
    clock_.advance(Seconds(5));
    if (kind == 0) poster_.post(MouseEvent{.position = Point{}});
    if (kind == 1) poster_.post(MouseEvent{.type = MouseEventType::leftDown, .position = Point{}, .clickState = 1});
    if (kind == 2) poster_.post(ScrollEvent{});
    if (kind == 3) poster_.post(KeyEvent{.keyCode = 8, .down = true});
    if (kind == 4) poster_.post(SystemDefinedEvent{});
    if (kind == 5) poster_.post(TextEvent{.text = u"a"});
    EXPECT_EQ(dispatch::turnGlobalQueues(), 1);
    EXPECT_FALSE(fake::powerManagement().displaySleeps) << kind;
  }
}

TEST_F(EventPosterTest, AReleaseWakesNoDisplay) {
  fake::powerManagement().displaySleeps = true;
  for (const MouseEventType type : {MouseEventType::leftUp, MouseEventType::rightUp, MouseEventType::otherUp}) {
    ASSERT_TRUE(poster_.post(MouseEvent{.type = type, .position = Point{}, .clickState = 1}));
  }
  ASSERT_TRUE(poster_.post(KeyEvent{.keyCode = 8, .down = false}));
  EXPECT_EQ(declarations(), 0u);
  EXPECT_TRUE(fake::powerManagement().displaySleeps);
  EXPECT_THAT(posted_, SizeIs(4));
}

TEST_F(EventPosterTest, ActivityIsDeclaredNowAndThenAndNotForEachEvent) {
  for (int event = 0; event < 625; ++event) {
    moveTo(event, 0);
    dispatch::turnGlobalQueues();
    clock_.advance(Seconds(0.008));
  }
  EXPECT_EQ(declarations(), 1u);
  moveTo(0, 0);
  EXPECT_EQ(declarations(), 2u);
}

TEST_F(EventPosterTest, InputDoesNotWaitForTheDeclarationOfActivity) {
  moveTo(0, 0);
  EXPECT_THAT(posted_, SizeIs(1));
  EXPECT_THAT(fake::powerManagement().activities, IsEmpty());
  EXPECT_EQ(dispatch::turnGlobalQueues(), 1);
  EXPECT_THAT(fake::powerManagement().activities, SizeIs(1));
}

TEST_F(EventPosterTest, DeclarationsDoNotPileUpWhileTheSystemHangs) {
  for (int times = 0; times < 10; ++times) {
    moveTo(0, 0);
    clock_.advance(Seconds(60));
  }
  EXPECT_EQ(declarations(), 1u);
  moveTo(0, 0);
  EXPECT_EQ(declarations(), 2u) << "once it has answered";
}

TEST_F(EventPosterTest, ADeclarationMayOutliveThePoster) {
  {
    SystemEventPoster brief(clock_);
    ASSERT_TRUE(brief.post(ScrollEvent{}));
  }
  EXPECT_EQ(declarations(), 1u);
}

TEST_F(EventPosterTest, TheActivityOfOneUserIsRenewed) {
  for (int times = 0; times < 3; ++times) {
    moveTo(0, 0);
    dispatch::turnGlobalQueues();
    clock_.advance(Seconds(60));
  }
  const auto activity = [](IOPMAssertionID renewed) {
    return fake::UserActivity{"Orvel: input from a phone", kIOPMUserActiveLocal, renewed};
  };
  EXPECT_THAT(fake::powerManagement().activities, ElementsAre(activity(0), activity(101), activity(102)));
}

TEST_F(EventPosterTest, InputGoesOnWhenTheSystemTakesNoActivity) {
  fake::powerManagement().fails = true;
  moveTo(1, 1);
  moveTo(2, 2);
  EXPECT_THAT(posted_, SizeIs(2));
  EXPECT_EQ(declarations(), 1u);
  clock_.advance(Seconds(5));
  moveTo(3, 3);
  EXPECT_EQ(declarations(), 2u);
  EXPECT_EQ(fake::powerManagement().activities.back().renewed, 0u);
}

TEST_F(EventPosterTest, ToAskWhereThePointerIsWakesNoDisplay) {
  poster_.pointerLocation();
  EXPECT_EQ(declarations(), 0u);
}

TEST_F(EventPosterTest, AShortTextIsOneStroke) {
  ASSERT_TRUE(type(u"Zürich"));
  EXPECT_THAT(posted_, ElementsAre(stroke(u"Zürich", true), stroke(u"Zürich", false)));
}

TEST_F(EventPosterTest, TextIsNoShortcutWhateverModifierIsHeld) {
  fake::quartz().heldModifiers = 0x100000;
  ASSERT_TRUE(type(u"q"));
  EXPECT_THAT(posted_, ElementsAre(stroke(u"q", true), stroke(u"q", false)));
}

TEST_F(EventPosterTest, EachStrokeOfALongTextIsReleasedBeforeTheNext) {
  ASSERT_TRUE(type(u"👍👍👍👍👍👍👍👍👍👍👎"));
  const std::u16string first = u"👍👍👍👍👍👍👍👍👍👍";
  EXPECT_THAT(posted_, ElementsAre(stroke(first, true), stroke(first, false), stroke(u"👎", true), stroke(u"👎", false)));
}

TEST_F(EventPosterTest, ATextArrivesWholeOrNotAtAll) {
  const std::u16string text(50, u'x');  // three strokes
  for (int creations = 0; creations < 6; ++creations) {
    fake::quartz().creationsLeft = creations;
    EXPECT_FALSE(type(text));
    EXPECT_THAT(posted_, IsEmpty()) << "only " << creations << " events can be made";
  }
  fake::quartz().creationsLeft = 6;
  EXPECT_TRUE(type(text));
  EXPECT_THAT(posted_, SizeIs(6));
}

TEST_F(EventPosterTest, NoTextIsNoStroke) {
  EXPECT_FALSE(type(u""));
  EXPECT_THAT(posted_, IsEmpty());
}

}  // namespace
}  // namespace orvel
