#include "BareThread.hpp"
#include "MacTest.hpp"
#include "frameworks/IconDrawing.hpp"
#include "platform/macos/SystemWorkspace.hpp"

#include <chrono>
#include <thread>

namespace orvel {
namespace {

constexpr double drawnSize = 56;

class WorkspaceIconTest : public MacTest {
 protected:
  void SetUp() override {
    MacTest::SetUp();
    fake::iconDrawing() = {};
  }

  SystemWorkspace workspace_;
};

TEST_F(WorkspaceIconTest, IsThePNGOfWhatWasDrawn) {
  onBareThread([&] {
    EXPECT_EQ(workspace_.icon("/Applications/Büro.app", drawnSize), fake::iconDrawing().png);
    EXPECT_EQ(fake::savedGraphicsStates(), 0u);
  });
  EXPECT_EQ(fake::iconDrawing().file, "/Applications/Büro.app");
  EXPECT_EQ(fake::iconDrawing().format, 4u);
}

TEST_F(WorkspaceIconTest, TheWholeIconFillsASquareOfThatManyPoints) {
  ASSERT_TRUE(workspace_.icon("/Applications/Editor.app", drawnSize));
  const fake::IconDrawing& drawing = fake::iconDrawing();
  EXPECT_EQ(drawing.place.origin.x, 0);
  EXPECT_EQ(drawing.place.origin.y, 0);
  EXPECT_EQ(drawing.place.size.width, drawnSize);
  EXPECT_EQ(drawing.place.size.height, drawnSize);
  EXPECT_EQ(drawing.part.origin.x, 0);
  EXPECT_EQ(drawing.part.origin.y, 0);
  EXPECT_EQ(drawing.part.size.width, 32);
  EXPECT_EQ(drawing.part.size.height, 24);
  EXPECT_EQ(drawing.operation, 1u);
  EXPECT_EQ(drawing.opacity, 1.0);
  EXPECT_EQ(drawing.interpolation, 3u);
}

TEST_F(WorkspaceIconTest, APointIsTwoPixelsOfTheCommonColours) {
  ASSERT_TRUE(workspace_.icon("/Applications/Editor.app", drawnSize));
  const fake::IconDrawing& drawing = fake::iconDrawing();
  EXPECT_EQ(drawing.width, 112);
  EXPECT_EQ(drawing.height, 112);
  EXPECT_EQ(drawing.size.width, drawnSize);
  EXPECT_EQ(drawing.size.height, drawnSize);
  EXPECT_TRUE(drawing.isPlainRGBA);
  EXPECT_TRUE(drawing.isTagged);
}

TEST_F(WorkspaceIconTest, IsNothingWhenAnyStepFails) {
  for (const char* step : {"bitmap", "colour", "context", "png"}) {
    fake::iconDrawing().failing = {step};
    EXPECT_EQ(workspace_.icon("/Applications/Editor.app", drawnSize), std::nullopt) << step;
    EXPECT_EQ(fake::savedGraphicsStates(), 0u) << step;
  }
}

TEST_F(WorkspaceIconTest, IsNothingForAPathThatIsNoText) {
  EXPECT_EQ(workspace_.icon("\xff", drawnSize), std::nullopt);
}

TEST_F(WorkspaceIconTest, DrawsForOneThreadAtATime) {
  fake::iconDrawing().timeout = std::chrono::milliseconds(50);
  const auto draw = [this] { workspace_.icon("/Applications/Editor.app", drawnSize); };
  std::thread other(draw);
  draw();
  other.join();
  EXPECT_FALSE(fake::drawingsMet());
}

}  // namespace
}  // namespace orvel
