#include "fakes/FakeClock.hpp"
#include "fakes/RecordingDesktop.hpp"
#include "fakes/ScriptedTree.hpp"
#include "input/CursorSnap.hpp"
#include "input/PermissionGate.hpp"
#include "input/PointerDriver.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace orvel {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;

struct CursorSnapTest : testing::Test {
  CursorSnapTest() { permission.refresh(); }

  /// An element of 40 by 20 points around a centre.
  static AccessibleElement elementAround(Point centre, const std::string& role = "AXButton") {
    return {.role = role, .position = Point{centre.x - 20, centre.y - 10}, .size = Size{40, 20}};
  }

  /// One snap with the pointer at 100, 100.
  std::vector<MouseEvent> settled() {
    snap.settle();
    clock.runDue();
    return desktop.all<MouseEvent>();
  }

  RecordingDesktop desktop;
  FakeClock clock;
  FakeExecutor pointerQueue{clock};
  FakeExecutor snapQueue{clock};
  ScriptedTree tree;
  PermissionGate permission{desktop};
  PointerDriver pointer{desktop, desktop, clock, pointerQueue};
  CursorSnap snap{{.clock = clock, .permission = permission, .pointer = pointer, .queue = snapQueue, .tree = tree}};
};

TEST_F(CursorSnapTest, WithoutThePermissionAsRememberedNothingIsAsked) {
  tree.element = elementAround({150, 100});
  desktop.trusted = false;
  permission.refresh();
  desktop.trusted = true;
  EXPECT_THAT(settled(), IsEmpty());
  EXPECT_THAT(tree.asked, IsEmpty());
}

TEST_F(CursorSnapTest, ItRunsOnItsOwnQueue) {
  tree.element = elementAround({150, 100});
  snap.settle();
  EXPECT_THAT(tree.asked, IsEmpty());
  clock.runDue();
  EXPECT_THAT(tree.asked, ElementsAre(Point{100, 100}));
}

TEST_F(CursorSnapTest, ANearCentreIsGlidedToInSixStepsThatSlowDown) {
  tree.element = elementAround({164, 100});
  const auto events = settled();
  std::vector<double> places;
  for (const MouseEvent& event : events) {
    EXPECT_EQ(event, (MouseEvent{.type = MouseEventType::moved, .position = event.position})) << "no deltas, no button";
    EXPECT_DOUBLE_EQ(event.position->y, 100);
    places.push_back(event.position->x);
  }
  ASSERT_EQ(places.size(), 6u);
  for (int step = 1; step <= 6; ++step) {
    const double left = 1 - step / 6.0;
    EXPECT_DOUBLE_EQ(places[static_cast<std::size_t>(step) - 1], 100 + 64 * (1 - left * left * left));
  }
  EXPECT_EQ(events.back().position, (Point{164, 100}));
  EXPECT_EQ(clock.sleeps, std::vector<Seconds>(6, Seconds(0.015)));
  EXPECT_EQ(desktop.flushed, 6u);
}

TEST_F(CursorSnapTest, OnlyCentresBeyondThreeAndWithinAHundredAndTenPointsAttract) {
  const std::pair<double, bool> cases[] = {
      {0, false}, {2, false},  {3, false},       {3.001, true}, {3.1, true},
      {50, true}, {110, true}, {110.001, false}, {111, false},
  };
  for (const auto& [distance, snaps] : cases) {
    for (const Point centre : {Point{100 + distance, 100}, Point{100, 100 + distance}}) {
      desktop.pointer = Point{100, 100};
      desktop.posted.clear();
      clock.advance(Seconds(1));
      tree.element = elementAround(centre);
      EXPECT_EQ(settled().size(), snaps ? 6u : 0u) << distance;
    }
  }
}

TEST_F(CursorSnapTest, ElevenRolesAttract) {
  for (const char* role : {"AXButton", "AXCheckBox", "AXRadioButton", "AXPopUpButton", "AXMenuItem", "AXMenuBarItem",
                           "AXLink", "AXTabButton", "AXDisclosureTriangle", "AXIncrementor", "AXColorWell"}) {
    desktop.pointer = Point{100, 100};
    desktop.posted.clear();
    clock.advance(Seconds(1));
    tree.element = elementAround({150, 100}, role);
    EXPECT_EQ(settled().size(), 6u) << role;
  }
}

TEST_F(CursorSnapTest, OtherRolesDoNot) {
  for (const char* role : {"AXTextField", "AXTextArea", "AXSlider", "AXStaticText", "AXImage", "AXRow", "AXCell",
                           "AXWindow", "AXGroup", "button", "axbutton", "AXButton ", ""}) {
    tree.element = elementAround({150, 100}, role);
    EXPECT_THAT(settled(), IsEmpty()) << role;
  }
}

TEST_F(CursorSnapTest, WhatIsNotKnownWhollyDoesNot) {
  tree.element = std::nullopt;
  EXPECT_THAT(settled(), IsEmpty());
  tree.element = elementAround({150, 100});
  tree.element->role.reset();
  EXPECT_THAT(settled(), IsEmpty());
  tree.element = elementAround({150, 100});
  tree.element->size.reset();
  EXPECT_THAT(settled(), IsEmpty());
  tree.element = elementAround({150, 100});
  tree.element->position.reset();
  EXPECT_THAT(settled(), IsEmpty());
}

TEST_F(CursorSnapTest, WithTheLeftButtonHeldItDrags) {
  pointer.button(0, true, 1);
  desktop.posted.clear();
  tree.element = elementAround({150, 100});
  EXPECT_THAT(settled(), Each(Field(&MouseEvent::type, MouseEventType::leftDragged)));
  EXPECT_EQ(desktop.posted.size(), 6u);
}

TEST_F(CursorSnapTest, WithAnotherButtonHeldItMoves) {
  pointer.button(1, true, 1);
  desktop.posted.clear();
  tree.element = elementAround({150, 100});
  EXPECT_THAT(settled(), Each(Field(&MouseEvent::type, MouseEventType::moved)));
  EXPECT_EQ(desktop.posted.size(), 6u);
}

TEST_F(CursorSnapTest, TheGlideStartsWhereThePointerIsByThen) {
  tree.element = elementAround({150, 100});
  tree.whenAsked = [&] {
    desktop.pointer = Point{90, 100};
    clock.advance(Seconds(1));
  };
  const auto events = settled();
  ASSERT_EQ(events.size(), 6u);
  EXPECT_LT(events[0].position->x, 90 + 60 * 0.43);
  EXPECT_EQ(events.back().position, (Point{150, 100}));
}

TEST_F(CursorSnapTest, TheGlideStaysOnTheDisplays) {
  desktop.pointer = Point{950, 100};
  tree.element = elementAround({1040, 100});
  const auto events = settled();
  ASSERT_EQ(events.size(), 6u);
  EXPECT_EQ(events.back().position, (Point{999, 100}));
}

TEST_F(CursorSnapTest, RelativeMotionContinuesFromTheControl) {
  tree.element = elementAround({150, 100});
  settled();
  desktop.pointer.reset();
  EXPECT_EQ(pointer.currentAuthoritative(), (Point{150, 100})) << "as the driver put it there a moment ago";
}

TEST_F(CursorSnapTest, WhereThePointersPositionIsUnknownNothingHappens) {
  for (const bool tracks : {true, false}) {
    desktop.tracks = tracks;
    desktop.pointer.reset();
    tree.element = elementAround({50, 0});
    EXPECT_THAT(settled(), IsEmpty());
    EXPECT_THAT(tree.asked, IsEmpty()) << "least of all for what is at the corner";
  }
}

TEST_F(CursorSnapTest, APositionThatIsFoundOutForTheSnapAloneWillDo) {
  desktop.tracks = false;
  tree.element = elementAround({150, 100});
  const auto events = settled();
  ASSERT_EQ(events.size(), 6u);
  EXPECT_EQ(events.back(), (MouseEvent{.position = Point{150, 100}}));
}

TEST_F(CursorSnapTest, APositionThatIsLostDuringTheLookEndsTheSnap) {
  desktop.tracks = false;
  tree.element = elementAround({150, 100});
  tree.whenAsked = [&] { desktop.pointer.reset(); };
  EXPECT_THAT(settled(), IsEmpty());
}

TEST_F(CursorSnapTest, SnapsRunOneAfterAnother) {
  tree.element = elementAround({150, 100});
  snap.settle();
  snap.settle();
  clock.runDue();
  EXPECT_THAT(tree.asked, ElementsAre(Point{100, 100}, Point{150, 100}));
  EXPECT_EQ(desktop.all<MouseEvent>().size(), 6u) << "the second finds the pointer there already";
}

TEST_F(CursorSnapTest, AFloodOfRequestsIsNotRemembered) {
  for (int request = 0; request < 10'000; ++request) snap.settle();
  EXPECT_LE(clock.pendingTasks(), 16u);
  clock.runDue();
  tree.asked.clear();
  settled();
  EXPECT_EQ(tree.asked.size(), 1u) << "and it goes on when they are done";
}

}  // namespace
}  // namespace orvel
