#include "ui/PanelPlacement.hpp"

#include <gtest/gtest.h>

namespace orvel {
namespace {

constexpr Size panel{300, 400};
constexpr Rect screen{{0, 0}, {1920, 1080}};

/// The desktop's bar takes 40 points away from one edge.
constexpr PanelPlacement::Monitor barAtTop{screen, {{0, 40}, {1920, 1040}}};
constexpr PanelPlacement::Monitor barAtBottom{screen, {{0, 0}, {1920, 1040}}};
constexpr PanelPlacement::Monitor barAtLeft{screen, {{40, 0}, {1880, 1080}}};
constexpr PanelPlacement::Monitor barAtRight{screen, {{0, 0}, {1880, 1080}}};

TEST(PanelPlacementTest, OpensBelowAnIconAtTheTop) {
  EXPECT_EQ(PanelPlacement::at({{1000, 8}, {24, 24}}, panel, barAtTop), (Point{862, 44}));
}

TEST(PanelPlacementTest, OpensAboveAnIconAtTheBottom) {
  EXPECT_EQ(PanelPlacement::at({{1000, 1048}, {24, 24}}, panel, barAtBottom), (Point{862, 636}));
}

TEST(PanelPlacementTest, OpensBesideAnIconAtTheLeftOrRight) {
  EXPECT_EQ(PanelPlacement::at({{8, 500}, {24, 24}}, panel, barAtLeft), (Point{44, 312}));
  EXPECT_EQ(PanelPlacement::at({{1888, 500}, {24, 24}}, panel, barAtRight), (Point{1576, 312}));
}

TEST(PanelPlacementTest, StaysInsideAtEveryCorner) {
  EXPECT_EQ(PanelPlacement::at({{1890, 8}, {24, 24}}, panel, barAtTop), (Point{1616, 44}));
  EXPECT_EQ(PanelPlacement::at({{0, 8}, {24, 24}}, panel, barAtTop), (Point{4, 44}));
  EXPECT_EQ(PanelPlacement::at({{1890, 1048}, {24, 24}}, panel, barAtBottom), (Point{1616, 636}));
  EXPECT_EQ(PanelPlacement::at({{8, 1050}, {24, 24}}, panel, barAtLeft), (Point{44, 676}));
}

TEST(PanelPlacementTest, OpensBelowABarThatTakesNoSpaceAway) {
  const PanelPlacement::Monitor unaware{screen, screen};
  EXPECT_EQ(PanelPlacement::at({{1000, 2}, {24, 24}}, panel, unaware), (Point{862, 30}));
  EXPECT_EQ(PanelPlacement::at({{1000, 1050}, {24, 24}}, panel, unaware), (Point{862, 646}));
}

TEST(PanelPlacementTest, StaysOnASecondMonitor) {
  const Rect second{{1920, -200}, {1280, 1024}};
  const PanelPlacement::Monitor monitor{second, {{1920, -200}, {1280, 984}}};
  EXPECT_EQ(PanelPlacement::at({{3170, 790}, {24, 24}}, panel, monitor), (Point{2896, 380}));
}

TEST(PanelPlacementTest, APanelThatIsTooLargeStartsAtTheLeftTop) {
  EXPECT_EQ(PanelPlacement::at({{1000, 8}, {24, 24}}, {2000, 2000}, barAtTop), (Point{4, 44}));
}

TEST(PanelPlacementTest, TheUsualCornerIsAtTheRightEndOfTheBar) {
  EXPECT_EQ(PanelPlacement::usualCorner(barAtTop).origin, (Point{1920, 0}));
  EXPECT_EQ(PanelPlacement::usualCorner(barAtBottom).origin, (Point{1920, 1080}));
  EXPECT_EQ(PanelPlacement::usualCorner({screen, screen}).origin, (Point{1920, 0}));
}

}  // namespace
}  // namespace orvel
