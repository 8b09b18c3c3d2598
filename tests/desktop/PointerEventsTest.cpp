#include "desktop/LeafFixture.hpp"

#include <cmath>
#include <limits>
#include <string>

namespace orvel {
namespace {

using Kind = X11Witness::Kind;
using Pixel = std::pair<int, int>;

struct PointerEventsTest : LeafFixture {
  /// Where a motion to `position` takes the pointer.
  Pixel moveTo(Point position) {
    post(MouseEventType::moved, position);
    delivered();
    return witness.pointer();
  }
};

TEST_F(PointerEventsTest, MotionLandsOnThePixelThatHoldsThePoint) {
  EXPECT_EQ(moveTo({100, 200}), Pixel(100, 200));
  EXPECT_EQ(moveTo({10.9, 20.2}), Pixel(10, 20));
  EXPECT_EQ(moveTo({0, 0}), Pixel(0, 0));
  EXPECT_EQ(moveTo({1279, 799}), Pixel(1279, 799));
  EXPECT_EQ(moveTo({1279.99, 799.99}), Pixel(1279, 799));
}

TEST_F(PointerEventsTest, PointsOutsideEndAtTheEdge) {
  EXPECT_EQ(moveTo({1280, 800}), Pixel(1279, 799));
  EXPECT_EQ(moveTo({-0.1, -0.1}), Pixel(0, 0));
  EXPECT_EQ(moveTo({1e300, 400}), Pixel(1279, 400));
  EXPECT_EQ(moveTo({-1e300, 70'000}), Pixel(0, 799));
  EXPECT_EQ(moveTo({std::numeric_limits<double>::infinity(), 5}), Pixel(1279, 5));
  EXPECT_EQ(moveTo({std::nan(""), 6}), Pixel(0, 6));
}

TEST_F(PointerEventsTest, EveryMotionTypeMoves) {
  post(MouseEventType::moved, {10, 10});
  post(MouseEventType::leftDragged, {20, 20});
  post(MouseEventType::rightDragged, {30, 30});
  const auto inputs = delivered();
  ASSERT_EQ(inputs.size(), 3u);
  EXPECT_EQ(inputs[1].x, 20);
  EXPECT_EQ(inputs[2].x, 30);
}

TEST_F(PointerEventsTest, AnUnknownTypeOfEventIsNoButton) {
  post(static_cast<MouseEventType>(99), {10, 10});
  const auto inputs = delivered();
  ASSERT_EQ(inputs.size(), 1u);
  EXPECT_EQ(inputs[0].kind, Kind::motion);
}

struct ButtonCase {
  const char* name;
  MouseEventType down;
  MouseEventType up;
  int button;
  unsigned mask;
};

struct ButtonTest : PointerEventsTest, testing::WithParamInterface<ButtonCase> {};

TEST_P(ButtonTest, PressesDragsAndReleasesAtItsPosition) {
  const ButtonCase& button = GetParam();
  post(button.down, {50, 60});
  post(MouseEventType::leftDragged, {70, 80});
  post(button.up, {70, 80});
  const auto inputs = delivered();
  ASSERT_EQ(inputs.size(), 4u);
  EXPECT_EQ(inputs[0].kind, Kind::motion) << "the pointer goes where the press happens";
  EXPECT_EQ(inputs[1].kind, Kind::buttonDown);
  EXPECT_EQ(inputs[1].detail, button.button);
  EXPECT_EQ(Pixel(inputs[1].x, inputs[1].y), Pixel(50, 60));
  EXPECT_EQ(inputs[2].kind, Kind::motion);
  EXPECT_EQ(inputs[2].state, button.mask) << "a motion while the button is down is a drag";
  EXPECT_EQ(inputs[3].kind, Kind::buttonUp) << "the pointer is there already";
  EXPECT_EQ(inputs[3].detail, button.button);
  EXPECT_EQ(Pixel(inputs[3].x, inputs[3].y), Pixel(70, 80));
}

INSTANTIATE_TEST_SUITE_P(
    , ButtonTest,
    testing::Values(ButtonCase{"Left", MouseEventType::leftDown, MouseEventType::leftUp, 1, XCB_BUTTON_MASK_1},
                    ButtonCase{"Middle", MouseEventType::otherDown, MouseEventType::otherUp, 2, XCB_BUTTON_MASK_2},
                    ButtonCase{"Right", MouseEventType::rightDown, MouseEventType::rightUp, 3, XCB_BUTTON_MASK_3}),
    [](const auto& chosen) { return std::string(chosen.param.name); });

TEST_F(PointerEventsTest, AButtonAtTheQueriedPositionDoesNotMoveThePointer) {
  const auto location = leaves.events.pointerLocation();
  ASSERT_TRUE(location);
  post(MouseEventType::leftDown, *location);
  post(MouseEventType::leftUp, *location);
  const auto inputs = delivered();
  ASSERT_EQ(inputs.size(), 2u);
  EXPECT_EQ(inputs[0].kind, Kind::buttonDown);
  EXPECT_EQ(inputs[1].kind, Kind::buttonUp);
}

TEST_F(PointerEventsTest, AButtonBeyondTheEdgeCountsAsAtTheEdge) {
  post(MouseEventType::moved, {1280, 800});
  post(MouseEventType::leftDown, {1280, 800});
  const auto inputs = delivered();
  ASSERT_EQ(inputs.size(), 2u);
  EXPECT_EQ(inputs[1].kind, Kind::buttonDown);
  EXPECT_EQ(Pixel(inputs[1].x, inputs[1].y), Pixel(1279, 799));
}

TEST_F(PointerEventsTest, WithoutAPositionMotionGoesByDeltasAndButtonsActWhereThePointerIs) {
  post(MouseEventType::moved, {100, 100});
  EXPECT_TRUE(leaves.events.post(MouseEvent{.deltaX = 30, .deltaY = -20}));
  EXPECT_EQ(leaves.events.pointerLocation(), (Point{130, 80}));
  EXPECT_TRUE(leaves.events.post(MouseEvent{.type = MouseEventType::leftDown, .clickState = 1}));
  const auto inputs = delivered();
  ASSERT_EQ(inputs.size(), 3u);
  EXPECT_EQ(Pixel(inputs[1].x, inputs[1].y), Pixel(130, 80));
  EXPECT_EQ(inputs[2].kind, Kind::buttonDown);
  EXPECT_EQ(Pixel(inputs[2].x, inputs[2].y), Pixel(130, 80));
}

TEST_F(PointerEventsTest, NothingArrivesBeforeTheFlush) {
  post(MouseEventType::leftDown, {50, 60});
  key(0x00, true);
  scroll(40, 0);
  EXPECT_FALSE(witness.waitForCount(1, lull));
  leaves.events.flush();
  EXPECT_TRUE(witness.waitForCount(5));
}

TEST_F(PointerEventsTest, TheLocationIncludesWhatIsNotFlushed) {
  post(MouseEventType::moved, {300.7, 9000});
  EXPECT_EQ(leaves.events.pointerLocation(), (Point{300, 799}));
  EXPECT_FALSE(witness.waitForCount(1, lull)) << "asking must not send";
  leaves.events.flush();
  EXPECT_EQ(leaves.events.pointerLocation(), (Point{300, 799}));
}

TEST_F(PointerEventsTest, TheLocationFollowsTheUsersOwnMouse) {
  post(MouseEventType::moved, {300, 300});
  delivered();
  LeafSet mouse(desktop);
  mouse.events.post(MouseEvent{.type = MouseEventType::moved, .position = Point{20, 30}});
  mouse.events.flush();
  ASSERT_EQ(mouse.events.pointerLocation(), (Point{20, 30}));
  EXPECT_EQ(leaves.events.pointerLocation(), (Point{20, 30}));
}

TEST_F(PointerEventsTest, InputReachesADesktopThatIsHeldForAnotherProgram) {
  witness.holdServer();
  post(MouseEventType::moved, {77, 88});
  leaves.events.flush();
  const bool moved = witness.waitForCount(1);
  witness.letGoServer();
  EXPECT_TRUE(moved);
}

TEST_F(PointerEventsTest, WhatWasFlushedArrivesAlsoWhenTheConnectionEnds) {
  {
    LeafSet leaving(desktop);
    for (int i = 0; i < 500; ++i) {
      leaving.events.post(MouseEvent{.type = MouseEventType::moved, .position = Point{static_cast<double>(i), 5}});
    }
    leaving.events.post(MouseEvent{.type = MouseEventType::moved, .position = Point{600, 601}});
    leaving.events.flush();
  }
  EXPECT_TRUE(witness.waitFor(
      [](const auto& inputs) { return !inputs.empty() && inputs.back().x == 600 && inputs.back().y == 601; }));
}

}  // namespace
}  // namespace orvel
