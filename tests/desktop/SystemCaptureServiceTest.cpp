#include "desktop/CaptureFixture.hpp"

namespace orvel {
namespace {

constexpr std::uint32_t background = 0x204060;
constexpr CaptureConfiguration fullSize{.width = 1280, .height = 800, .framesPerSecond = 30};

/// The cursor of an X server without a window manager is a cross in the middle of the screen.
struct SystemCaptureServiceTest : Scene, testing::Test {
  SystemCaptureServiceTest() { painter.movePointer(1279, 799); }
};

TEST_F(SystemCaptureServiceTest, TheFirstFrameComesAtOnceAndIsWhatIsOnTheScreen) {
  const Picture page = pageOfText(1280, 800);
  painter.show(page);
  const auto stream = start(fullSize);
  ASSERT_NE(stream, nullptr);
  EXPECT_TRUE(receiver.waitForPicture([&](const Picture& picture) {
    Picture withoutCursor = picture;
    withoutCursor.fill(1260, 780, 20, 20, 0);
    Picture expected = page;
    expected.fill(1260, 780, 20, 20, 0);
    return withoutCursor == expected;
  }));
}

TEST_F(SystemCaptureServiceTest, AStillScreenCostsNothing) {
  const auto stream = start(fullSize);
  ASSERT_TRUE(receiver.waitForCount(1));
  const auto frames = receiver.settle();
  const long sleeps = receiver.sleeps();
  EXPECT_FALSE(receiver.waitForCount(frames + 1, 20 * lull));
  EXPECT_EQ(receiver.sleeps(), sleeps);
  EXPECT_GT(sleeps, 0);
}

TEST_F(SystemCaptureServiceTest, AChangeComes) {
  const auto stream = start(fullSize);
  ASSERT_TRUE(receiver.waitForPicture([](const Picture& picture) { return picture.at(100, 100) == background; }));
  receiver.settle();
  painter.fill(90, 90, 20, 20, 0xff8000);
  EXPECT_TRUE(receiver.waitForPicture([](const Picture& picture) {
    return picture.at(100, 100) == 0xff8000 && picture.at(89, 89) == background && picture.at(110, 110) == background;
  }));
}

}  // namespace
}  // namespace orvel
