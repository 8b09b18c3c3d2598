#include "desktop/LeafFixture.hpp"

#include <vector>

namespace orvel {
namespace {

using Kind = X11Witness::Kind;

constexpr int up = 4;
constexpr int down = 5;
constexpr int left = 6;
constexpr int right = 7;

struct ScrollEventsTest : LeafFixture {
  /// The wheel's notches since the last call, by button.
  std::vector<int> notches() {
    std::vector<int> buttons;
    const auto inputs = delivered();
    EXPECT_EQ(inputs.size() % 2, 0u);
    for (std::size_t i = 0; i + 1 < inputs.size(); i += 2) {
      EXPECT_EQ(inputs[i].kind, Kind::buttonDown);
      EXPECT_EQ(inputs[i + 1].kind, Kind::buttonUp);
      EXPECT_EQ(inputs[i].detail, inputs[i + 1].detail);
      buttons.push_back(inputs[i].detail);
    }
    return buttons;
  }
};

TEST_F(ScrollEventsTest, FortyPixelsAreOneNotchInEachDirection) {
  scroll(40, 0);
  scroll(-40, 0);
  scroll(0, 40);
  scroll(0, -40);
  EXPECT_EQ(notches(), (std::vector{up, down, left, right}));
}

TEST_F(ScrollEventsTest, SmallMotionAddsUp) {
  scroll(3, 0);
  scroll(10, 0);
  scroll(13, 0);
  scroll(13, 0);
  EXPECT_TRUE(notches().empty());
  scroll(1, 0);
  EXPECT_EQ(notches(), std::vector{up});
  scroll(39, 0);
  EXPECT_TRUE(notches().empty()) << "nothing was left over";
}

TEST_F(ScrollEventsTest, WhatIsLeftOfANotchIsKept) {
  scroll(-100, 0);
  EXPECT_EQ(notches(), (std::vector{down, down}));
  scroll(-20, 0);
  EXPECT_EQ(notches(), std::vector{down});
}

TEST_F(ScrollEventsTest, TurningBackTakesFromWhatIsLeft) {
  scroll(30, 0);
  scroll(-60, 0);
  EXPECT_TRUE(notches().empty());
  scroll(-10, 0);
  EXPECT_EQ(notches(), std::vector{down});
}

TEST_F(ScrollEventsTest, TheAxesDoNotMix) {
  scroll(20, 20);
  scroll(0, 20);
  EXPECT_EQ(notches(), std::vector{left});
  scroll(20, 0);
  EXPECT_EQ(notches(), std::vector{up});
}

TEST_F(ScrollEventsTest, TheFurthestScrollArrivesWhole) {
  scroll(4000, -4000);
  std::vector<int> expected(100, up);
  expected.insert(expected.end(), 100, right);
  EXPECT_EQ(notches(), expected);
}

}  // namespace
}  // namespace orvel
