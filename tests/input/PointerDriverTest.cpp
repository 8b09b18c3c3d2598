#include "fakes/FakeClock.hpp"
#include "fakes/RecordingDesktop.hpp"
#include "input/PointerDriver.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

namespace orvel {
namespace {

constexpr Seconds tick{0.008};

struct PointerDriverTest : testing::Test {
  std::vector<MouseEvent> mouse() const { return desktop.all<MouseEvent>(); }

  MouseEvent last() const {
    const auto events = mouse();
    if (events.empty()) {
      ADD_FAILURE() << "no mouse event was posted";
      return {};
    }
    return events.back();
  }

  RecordingDesktop desktop;
  FakeClock clock;
  FakeExecutor clockQueue{clock};
  PointerDriver pointer{desktop, desktop, clock, clockQueue};
};

TEST_F(PointerDriverTest, MotionWithinOneTickBecomesOneEvent) {
  pointer.moveRelative(3, 0);
  pointer.moveRelative(-1, 2);
  EXPECT_TRUE(desktop.posted.empty()) << "nothing is posted on the receive path";
  clock.runDue();
  EXPECT_EQ(mouse(), (std::vector<MouseEvent>{
                         {.type = MouseEventType::moved, .position = Point{102, 102}, .deltaX = 2, .deltaY = 2}}));
  EXPECT_EQ(desktop.flushed, 1u);
}

TEST_F(PointerDriverTest, TheClockTicksEveryEightMilliseconds) {
  pointer.moveRelative(1, 0);
  clock.runDue();
  pointer.moveRelative(1, 0);
  clock.advance(Seconds(0.0079));
  EXPECT_EQ(mouse().size(), 1u);
  clock.advance(Seconds(0.0002));
  EXPECT_EQ(mouse().size(), 2u);
}

TEST_F(PointerDriverTest, AThousandFramesASecondBecomeAtMost125Events) {
  for (int frame = 0; frame < 1000; ++frame) {
    pointer.moveRelative(1, 0);
    clock.advance(Seconds(0.001));
  }
  clock.advance(tick);
  EXPECT_LE(mouse().size(), 127u);
  EXPECT_GE(mouse().size(), 124u);
  EXPECT_EQ(last().position->x, 999) << "the sum arrives, up to the edge of the screen";
}

TEST_F(PointerDriverTest, TheClockStopsAfterASecondWithoutMotion) {
  pointer.moveRelative(1, 0);
  clock.advance(Seconds(1.0));
  EXPECT_GT(clock.pendingTasks(), 0u) << "still idling at exactly one second";
  clock.advance(Seconds(0.02));
  EXPECT_EQ(clock.pendingTasks(), 0u);
  EXPECT_EQ(mouse().size(), 1u);
}

TEST_F(PointerDriverTest, TheNextMotionStartsANewClock) {
  pointer.moveRelative(1, 0);
  clock.advance(Seconds(2));
  pointer.moveRelative(5, 0);
  clock.runDue();
  EXPECT_EQ(mouse().size(), 2u);
  EXPECT_EQ(last().position, (Point{106, 100}));
}

TEST_F(PointerDriverTest, EachTickStartsWhereTheSystemSaysThePointerIs) {
  pointer.moveRelative(1, 0);
  clock.runDue();
  desktop.pointer = Point{500, 500};
  pointer.moveRelative(1, 1);
  clock.advance(tick);
  EXPECT_EQ(last().position, (Point{501, 501}));
}

TEST_F(PointerDriverTest, WithoutASystemPositionATickGoesOnFromItsOwn) {
  pointer.moveRelative(1, 0);
  clock.runDue();
  desktop.pointer.reset();
  pointer.moveRelative(10, 0);
  clock.advance(tick);
  EXPECT_EQ(last().position, (Point{111, 100}));
}

TEST_F(PointerDriverTest, DeltasRoundHalvesAwayFromZero) {
  pointer.moveRelative(2.5, -2.5);
  clock.runDue();
  EXPECT_EQ(last().deltaX, 3);
  EXPECT_EQ(last().deltaY, -3);
}

TEST_F(PointerDriverTest, MotionStaysInsideTheScreens) {
  pointer.moveRelative(-5000, 5000);
  clock.runDue();
  EXPECT_EQ(last().position, (Point{0, 799}));
  EXPECT_EQ(last().deltaX, -5000) << "the delta says what the finger did";
}

TEST_F(PointerDriverTest, HeldButtonsMakeDrags) {
  struct Case {
    std::vector<int> held;
    MouseEventType type;
    std::uint8_t code;
  };
  const Case cases[] = {
      {{}, MouseEventType::moved, 0},         {{0}, MouseEventType::leftDragged, 0},
      {{1}, MouseEventType::rightDragged, 1}, {{0, 1}, MouseEventType::leftDragged, 1},
      {{2}, MouseEventType::moved, 0},
  };
  for (const Case& test : cases) {
    for (const int button : test.held) pointer.button(button, true, 1);
    pointer.moveRelative(1, 0);
    clock.advance(tick);
    EXPECT_EQ(last().type, test.type);
    EXPECT_EQ(last().buttonCode, test.code);
    for (const int button : test.held) pointer.button(button, false, 1);
  }
}

TEST_F(PointerDriverTest, AButtonOfAnyOtherNumberPressesTheLeftOneButMakesNoDrag) {
  pointer.button(7, true, 1);
  pointer.moveRelative(1, 0);
  clock.advance(tick);
  EXPECT_EQ(last().type, MouseEventType::moved);
  pointer.moveAbsolute(0.5, 0.5);
  EXPECT_EQ(last().type, MouseEventType::moved);
  pointer.releaseAll();
  EXPECT_EQ(last().type, MouseEventType::leftUp);
}

TEST_F(PointerDriverTest, AbsoluteMotionReachesTheFarEdgeUnclamped) {
  desktop.setScreens({{{10, 20}, {1000, 800}}, {{1010, 0}, {500, 500}}});
  pointer.moveAbsolute(1.0, 1.0);
  EXPECT_EQ(last(), (MouseEvent{.type = MouseEventType::moved, .position = Point{1010, 820}}));
  pointer.moveAbsolute(0, 0.5);
  EXPECT_EQ(last().position, (Point{10, 420}));
}

TEST_F(PointerDriverTest, AbsoluteMotionIsClampedToTheMainDisplay) {
  pointer.moveAbsolute(-3, 7);
  EXPECT_EQ(last().position, (Point{0, 800}));
}

TEST_F(PointerDriverTest, AbsoluteMotionDiscardsQueuedMotion) {
  pointer.moveRelative(50, 50);
  pointer.moveAbsolute(0.5, 0.5);
  clock.advance(tick);
  EXPECT_EQ(mouse().size(), 1u);
  EXPECT_EQ(last().position, (Point{500, 400}));
}

TEST_F(PointerDriverTest, AbsoluteMotionDragsOnlyWithTheLeftButton) {
  pointer.button(1, true, 1);
  pointer.moveAbsolute(0.5, 0.5);
  EXPECT_EQ(last().type, MouseEventType::moved);
  pointer.button(0, true, 1);
  pointer.moveAbsolute(0.6, 0.5);
  EXPECT_EQ(last().type, MouseEventType::leftDragged);
  EXPECT_EQ(last().buttonCode, 0);
}

TEST_F(PointerDriverTest, ButtonsHaveTheirEventTypes) {
  struct Case {
    int button;
    MouseEventType down;
    MouseEventType up;
    std::uint8_t code;
  };
  const Case cases[] = {
      {0, MouseEventType::leftDown, MouseEventType::leftUp, 0},
      {1, MouseEventType::rightDown, MouseEventType::rightUp, 1},
      {2, MouseEventType::otherDown, MouseEventType::otherUp, 2},
      {7, MouseEventType::leftDown, MouseEventType::leftUp, 0},
      {255, MouseEventType::leftDown, MouseEventType::leftUp, 0},
  };
  for (const Case& test : cases) {
    pointer.button(test.button, true, 1);
    EXPECT_EQ(last(),
              (MouseEvent{.type = test.down, .buttonCode = test.code, .position = Point{100, 100}, .clickState = 1}));
    pointer.button(test.button, false, 1);
    EXPECT_EQ(last(),
              (MouseEvent{.type = test.up, .buttonCode = test.code, .position = Point{100, 100}, .clickState = 1}));
  }
}

TEST_F(PointerDriverTest, ClickStateIsAtLeastOne) {
  for (const auto& [count, state] : {std::pair{-1, 1}, {0, 1}, {1, 1}, {2, 2}, {3, 3}}) {
    pointer.button(0, true, count);
    EXPECT_EQ(last().clickState, state);
  }
}

TEST_F(PointerDriverTest, AButtonThatCouldNotBePostedIsNotHeld) {
  desktop.accepts = false;
  pointer.button(0, true, 1);
  desktop.accepts = true;
  pointer.releaseAll();
  EXPECT_TRUE(desktop.posted.empty());
}

TEST_F(PointerDriverTest, AReleaseThatCouldNotBePostedIsStillHeld) {
  pointer.button(0, true, 1);
  desktop.accepts = false;
  pointer.button(0, false, 1);
  desktop.accepts = true;
  pointer.releaseAll();
  EXPECT_EQ(last().type, MouseEventType::leftUp);
}

TEST_F(PointerDriverTest, ItsOwnPlacementCountsForAFifthOfASecond) {
  pointer.moveRelative(1, 0);
  clock.runDue();
  desktop.pointer = Point{700, 700};
  clock.advance(Seconds(0.1999));
  EXPECT_EQ(pointer.currentAuthoritative(), (Point{101, 100}));
  clock.advance(Seconds(0.0002));
  EXPECT_EQ(pointer.currentAuthoritative(), (Point{700, 700}));
}

TEST_F(PointerDriverTest, AFifthOfASecondIncludesItsLastMoment) {
  FakeClock fromZero(Seconds(0));  // so that the difference of the two moments is exact
  FakeExecutor queue(fromZero);
  PointerDriver placed(desktop, desktop, fromZero, queue);
  placed.place({300, 200}, false);
  desktop.pointer = Point{700, 700};
  fromZero.advance(Seconds(0.2));
  EXPECT_EQ(placed.currentAuthoritative(), (Point{300, 200}));
}

TEST_F(PointerDriverTest, APlacementAtTheOriginDoesNotCount) {
  pointer.moveRelative(-500, -500);
  clock.runDue();
  desktop.pointer = Point{700, 700};
  EXPECT_EQ(pointer.currentAuthoritative(), (Point{700, 700}));
}

TEST_F(PointerDriverTest, AbsoluteMotionAloneDoesNotOverruleTheSystem) {
  pointer.moveAbsolute(0.5, 0.5);
  desktop.pointer = Point{700, 700};
  EXPECT_EQ(pointer.currentAuthoritative(), (Point{700, 700}));
}

TEST_F(PointerDriverTest, AbsoluteMotionDoesNotProlongTheTimeOfAnEarlierPlacement) {
  pointer.moveRelative(1, 0);
  clock.runDue();
  clock.advance(Seconds(0.15));
  pointer.moveAbsolute(0.5, 0.5);
  desktop.pointer = Point{700, 700};
  EXPECT_EQ(pointer.currentAuthoritative(), (Point{500, 400})) << "the earlier placement is recent";
  clock.advance(Seconds(0.1));
  EXPECT_EQ(pointer.currentAuthoritative(), (Point{700, 700})) << "and then no more";
}

TEST_F(PointerDriverTest, WithoutASystemPositionTheLastKnownOneHolds) {
  desktop.pointer = Point{300, 300};
  EXPECT_EQ(pointer.currentAuthoritative(), (Point{300, 300}));
  desktop.pointer.reset();
  EXPECT_EQ(pointer.currentAuthoritative(), (Point{300, 300}));
}

TEST_F(PointerDriverTest, ScrollIsClampedAndKeepsItsSign) {
  pointer.scroll(5000, -5000);
  pointer.scroll(-3, 7);
  EXPECT_EQ(desktop.all<ScrollEvent>(), (std::vector<ScrollEvent>{{-4000, 4000}, {7, -3}}));
}

TEST_F(PointerDriverTest, ClampsToTheRectangleAroundAllDisplays) {
  desktop.setScreens({{{0, 0}, {1000, 800}}, {{1000, 0}, {500, 400}}});
  EXPECT_EQ(pointer.clampToDisplays({1400, 700}), (Point{1400, 700})) << "a gap beside a smaller display";
  EXPECT_EQ(pointer.clampToDisplays({2000, 900}), (Point{1499, 799}));
  EXPECT_EQ(pointer.clampToDisplays({-5, -5}), (Point{0, 0}));
  desktop.setScreens({{{0, 0}, {1000, 800}}, {{-500, -100}, {500, 400}}});
  EXPECT_EQ(pointer.clampToDisplays({-900, -900}), (Point{-500, -100}));
}

TEST_F(PointerDriverTest, WithoutScreensNothingIsClamped) {
  desktop.setScreens({});
  EXPECT_EQ(pointer.clampToDisplays({-12345, 67890}), (Point{-12345, 67890}));
}

TEST_F(PointerDriverTest, ReleaseAllReleasesEveryButtonAndStopsTheClock) {
  pointer.button(0, true, 1);
  pointer.button(2, true, 3);
  pointer.moveRelative(1, 1);
  desktop.posted.clear();
  pointer.releaseAll();
  EXPECT_EQ(mouse(),
            (std::vector<MouseEvent>{
                {.type = MouseEventType::leftUp, .position = Point{100, 100}, .clickState = 1},
                {.type = MouseEventType::otherUp, .buttonCode = 2, .position = Point{100, 100}, .clickState = 1}}));
  EXPECT_EQ(desktop.flushed, desktop.posted.size());
  clock.advance(Seconds(0.1));
  EXPECT_EQ(mouse().size(), 2u) << "the stopped clock posts no motion";
  EXPECT_EQ(clock.pendingTasks(), 0u);
}

TEST_F(PointerDriverTest, ReleaseAllWithNothingHeldOnlyStopsTheClock) {
  pointer.moveRelative(1, 1);
  pointer.releaseAll();
  clock.advance(Seconds(0.1));
  EXPECT_TRUE(desktop.posted.empty());
  EXPECT_EQ(clock.pendingTasks(), 0u);
}

TEST_F(PointerDriverTest, ReleaseAllTwiceReleasesOnce) {
  pointer.button(0, true, 1);
  pointer.releaseAll();
  pointer.releaseAll();
  EXPECT_EQ(mouse().size(), 2u);
}

TEST_F(PointerDriverTest, RevealCirclesThePointerOnceAndComesBack) {
  desktop.pointer = Point{400, 300};
  pointer.reveal();
  const auto events = mouse();
  ASSERT_EQ(events.size(), 12u);
  for (std::size_t step = 0; step <= 10; ++step) {
    const double angle = 2 * std::numbers::pi * static_cast<double>(step) / 10;
    EXPECT_NEAR(events[step].position->x, 400 + 26 * std::cos(angle), 1e-9);
    EXPECT_NEAR(events[step].position->y, 300 + 26 * std::sin(angle), 1e-9);
    EXPECT_EQ(events[step].type, MouseEventType::moved);
  }
  EXPECT_EQ(events.back(), (MouseEvent{.type = MouseEventType::moved, .position = Point{400, 300}}));
  EXPECT_EQ(clock.sleeps, std::vector<Seconds>(11, Seconds(0.014)));
  EXPECT_EQ(desktop.flushed, 12u);
  desktop.pointer = Point{1, 1};
  EXPECT_EQ(pointer.currentAuthoritative(), (Point{400, 300})) << "the return counts as a placement";
}

TEST_F(PointerDriverTest, RevealStaysOnTheScreensButEndsWhereItBegan) {
  desktop.pointer = Point{2000, 5};
  pointer.reveal();
  for (const MouseEvent& event : mouse()) EXPECT_GE(event.position->y, 0);
  EXPECT_EQ(mouse().front().position->x, 999);
  EXPECT_EQ(last().position, (Point{2000, 5}));
}

TEST_F(PointerDriverTest, WithoutAMainDisplayAbsoluteMotionIsOnlyForgotten) {
  desktop.setScreens({});
  pointer.moveRelative(5, 5);
  pointer.moveAbsolute(0.5, 0.5);
  clock.advance(tick);
  EXPECT_TRUE(desktop.posted.empty()) << "its corner is no place that a phone meant";
}

TEST_F(PointerDriverTest, BeforeThePositionIsKnownForTheFirstTimeNothingIsPostedAtTheCorner) {
  desktop.pointer.reset();
  EXPECT_EQ(pointer.currentAuthoritative(), std::nullopt);
  pointer.button(0, true, 1);
  EXPECT_EQ(last(), (MouseEvent{.type = MouseEventType::leftDown, .clickState = 1}));
  pointer.moveRelative(3, 4);
  clock.runDue();
  EXPECT_EQ(last(), (MouseEvent{.type = MouseEventType::leftDragged, .deltaX = 3, .deltaY = 4}));
}

/// A desktop that never reports where its pointer is.
struct UntrackedPointerTest : PointerDriverTest {
  UntrackedPointerTest() {
    desktop.tracks = false;
    desktop.pointer.reset();
  }
};

TEST_F(UntrackedPointerTest, MotionGoesByDeltas) {
  pointer.moveRelative(3, 0);
  pointer.moveRelative(-1, 2);
  clock.runDue();
  EXPECT_EQ(mouse(), (std::vector<MouseEvent>{{.deltaX = 2, .deltaY = 2}}));
  pointer.moveRelative(-5000, 5000);
  clock.advance(tick);
  EXPECT_EQ(last(), (MouseEvent{.deltaX = -5000, .deltaY = 5000})) << "the desktop knows where its screens end";
}

TEST_F(UntrackedPointerTest, MotionGoesByDeltasEvenWhereThePointerWasPutJustBefore) {
  pointer.moveAbsolute(0.5, 0.5);
  EXPECT_EQ(last(), (MouseEvent{.position = Point{500, 400}})) << "a place that the phone names is known";
  pointer.moveRelative(7, 0);
  clock.runDue();
  EXPECT_EQ(last(), (MouseEvent{.deltaX = 7})) << "the user's own mouse may have moved it since";
}

TEST_F(UntrackedPointerTest, ButtonsActWhereThePointerIs) {
  pointer.moveAbsolute(0.5, 0.5);
  pointer.button(1, true, 2);
  EXPECT_EQ(last(), (MouseEvent{.type = MouseEventType::rightDown, .buttonCode = 1, .clickState = 2}));
  pointer.button(1, false, 2);
  EXPECT_EQ(last(), (MouseEvent{.type = MouseEventType::rightUp, .buttonCode = 1, .clickState = 2}));
}

TEST_F(UntrackedPointerTest, DragsGoByDeltas) {
  pointer.button(0, true, 1);
  pointer.moveRelative(10, -4);
  clock.runDue();
  EXPECT_EQ(last(), (MouseEvent{.type = MouseEventType::leftDragged, .deltaX = 10, .deltaY = -4}));
  pointer.moveAbsolute(1, 0);
  EXPECT_EQ(last(), (MouseEvent{.type = MouseEventType::leftDragged, .position = Point{1000, 0}}));
  pointer.releaseAll();
  EXPECT_EQ(last(), (MouseEvent{.type = MouseEventType::leftUp, .clickState = 1}));
}

TEST_F(UntrackedPointerTest, ScrollingNeedsNoPosition) {
  pointer.scroll(3, -40);
  EXPECT_EQ(desktop.all<ScrollEvent>(), (std::vector<ScrollEvent>{{-40, 3}}));
}

TEST_F(UntrackedPointerTest, RevealCirclesByDeltasAndComesBack) {
  pointer.reveal();
  const auto events = mouse();
  ASSERT_EQ(events.size(), 12u);
  std::int64_t x = 0;
  std::int64_t y = 0;
  for (std::size_t step = 0; step <= 10; ++step) {
    EXPECT_EQ(events[step].position, std::nullopt);
    EXPECT_EQ(events[step].type, MouseEventType::moved);
    x += events[step].deltaX;
    y += events[step].deltaY;
    const double angle = 2 * std::numbers::pi * static_cast<double>(step) / 10;
    EXPECT_NEAR(static_cast<double>(x), 26 * std::cos(angle), 0.5);
    EXPECT_NEAR(static_cast<double>(y), 26 * std::sin(angle), 0.5);
  }
  EXPECT_EQ(x + events.back().deltaX, 0);
  EXPECT_EQ(y + events.back().deltaY, 0);
  EXPECT_EQ(clock.sleeps, std::vector<Seconds>(11, Seconds(0.014)));
}

TEST_F(UntrackedPointerTest, InputDoesNotAskForThePosition) {
  pointer.moveRelative(1, 1);
  clock.runDue();
  pointer.moveAbsolute(0.5, 0.5);
  pointer.button(0, true, 1);
  pointer.button(0, false, 1);
  pointer.scroll(0, 1);
  pointer.reveal();
  pointer.releaseAll();
  EXPECT_EQ(desktop.pointerQueries, 0) << "it may be dear to find out";
}

TEST_F(UntrackedPointerTest, ThePositionIsAskedForAnewEachTime) {
  desktop.pointer = Point{300, 300};
  EXPECT_EQ(pointer.currentAuthoritative(), (Point{300, 300}));
  pointer.place({310, 300}, false);
  pointer.moveRelative(50, 0);
  clock.runDue();
  EXPECT_EQ(pointer.currentAuthoritative(), (Point{360, 300})) << "not where it was put before the motion";
  desktop.pointer.reset();
  EXPECT_EQ(pointer.currentAuthoritative(), std::nullopt) << "a position of the past is none";
}

}  // namespace
}  // namespace orvel
