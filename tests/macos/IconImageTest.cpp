#include "BareThread.hpp"
#include "MacTest.hpp"
#include "frameworks/IconDrawing.hpp"
#include "platform/macos/SystemWorkspace.hpp"

namespace orvel {
namespace {

constexpr double iconSize = 56;

class IconImageTest : public MacTest {
 protected:
  void SetUp() override {
    MacTest::SetUp();
    fake::iconDrawing() = {};
  }

  SystemWorkspace workspace_;
};

TEST_F(IconImageTest, IsThePNGOfWhatWasDrawn) {
  onBareThread([&] {
    EXPECT_EQ(workspace_.icon("/Applications/Büro.app", iconSize), fake::iconDrawing().png);
    EXPECT_EQ(fake::savedGraphicsStates(), 0u);
  });
  EXPECT_EQ(fake::iconDrawing().file, "/Applications/Büro.app");
  EXPECT_EQ(fake::iconDrawing().format, 4u);
}

TEST_F(IconImageTest, TheWholeIconFillsASquareOfThatManyPoints) {
  ASSERT_TRUE(workspace_.icon("/Applications/Editor.app", iconSize));
  const fake::IconDrawing& drawing = fake::iconDrawing();
  EXPECT_EQ(drawing.place.origin.x, 0);
  EXPECT_EQ(drawing.place.origin.y, 0);
  EXPECT_EQ(drawing.place.size.width, iconSize);
  EXPECT_EQ(drawing.place.size.height, iconSize);
  EXPECT_EQ(drawing.part.origin.x, 0);
  EXPECT_EQ(drawing.part.origin.y, 0);
  EXPECT_EQ(drawing.part.size.width, 32);
  EXPECT_EQ(drawing.part.size.height, 24);
  EXPECT_EQ(drawing.operation, 1u);
  EXPECT_EQ(drawing.opacity, 1.0);
  EXPECT_EQ(drawing.interpolation, 3u);
}

TEST_F(IconImageTest, APointIsTwoPixelsOfTheCommonColours) {
  ASSERT_TRUE(workspace_.icon("/Applications/Editor.app", iconSize));
  const fake::IconDrawing& drawing = fake::iconDrawing();
  EXPECT_EQ(drawing.width, 112);
  EXPECT_EQ(drawing.height, 112);
  EXPECT_EQ(drawing.size.width, iconSize);
  EXPECT_EQ(drawing.size.height, iconSize);
  EXPECT_TRUE(drawing.isPlainRGBA);
  EXPECT_TRUE(drawing.isTagged);
}

TEST_F(IconImageTest, IsNothingWhenAnyStepFails) {
  for (const char* step : {"bitmap", "colour", "context", "png"}) {
    fake::iconDrawing().failing = {step};
    EXPECT_EQ(workspace_.icon("/Applications/Editor.app", iconSize), std::nullopt) << step;
    EXPECT_EQ(fake::savedGraphicsStates(), 0u) << step;
  }
}

TEST_F(IconImageTest, IsNothingForAPathThatIsNoText) {
  EXPECT_EQ(workspace_.icon("\xff", iconSize), std::nullopt);
}

}  // namespace
}  // namespace orvel
