#include "desktop/CaptureFixture.hpp"
#include "platform/linux/x11/capture/CursorOverlay.hpp"
#include "platform/linux/x11/capture/ScreenImage.hpp"

namespace orvel {
namespace {

constexpr PixelRect area{100, 50, 40, 30};

/// A part of a screen of one colour.
struct CursorOverlayTest : Scene, testing::Test {
  CursorOverlayTest() { image.fetch({0, area.height}); }

  static Cursor cursorOf(std::uint32_t pixel, int x, int y, int hotX = 0, int hotY = 0) {
    return {std::make_shared<const CursorShape>(
                CursorShape{.width = 8, .height = 8, .hotX = hotX, .hotY = hotY, .pixels = std::vector(64, pixel)}),
            x, y};
  }

  Picture picture() { return Picture({image.bytes(), image.bytesPerRow(), area.width, area.height}); }

  ScreenImage image{*connection, *ScreenFormat::of(*connection), area};
  CursorOverlay overlay;
};

TEST_F(CursorOverlayTest, ItStandsWithItsHotSpotAtItsPlace) {
  Picture expected(40, 30, 0x204060);
  ASSERT_TRUE(picture() == expected);
  expected.fill(10 - 3, 10 - 2, 8, 8, 0xff8000);
  overlay.draw(cursorOf(0xffff8000, 110, 60, 3, 2), image);
  EXPECT_TRUE(picture() == expected);
}

TEST_F(CursorOverlayTest, WhatIsHalfTransparentIsBlended) {
  overlay.draw(cursorOf(0x80400000, 110, 60), image);
  EXPECT_EQ(picture().at(10, 10), 0x502030u);
  overlay.erase(image);
  overlay.draw(cursorOf(0x00000000, 110, 60), image);
  EXPECT_EQ(picture().at(10, 10), 0x204060u);
}

TEST_F(CursorOverlayTest, ColoursThatAreTooBrightAreWhite) {
  overlay.draw(cursorOf(0x00ffffff, 110, 60), image);
  EXPECT_EQ(picture().at(10, 10), 0xffffffu);
}

TEST_F(CursorOverlayTest, WhatIsOutsideIsLeftOutAndTakingItOutLeavesNoTrace) {
  const Picture before = picture();
  for (const auto& [x, y] : {std::pair{96, 46}, {136, 76}, {96, 76}, {136, 46}, {110, 60}}) {
    overlay.draw(cursorOf(0xffff8000, x, y), image);
    EXPECT_FALSE(picture() == before);
    overlay.erase(image);
    EXPECT_TRUE(picture() == before);
  }
  for (const auto& [x, y] : {std::pair{92, 60}, {140, 60}, {110, 42}, {110, 80}, {-3000, 20000}}) {
    overlay.draw(cursorOf(0xffff8000, x, y), image);
    EXPECT_TRUE(picture() == before);
  }
  overlay.draw({}, image);
  EXPECT_TRUE(picture() == before);
}

}  // namespace
}  // namespace orvel
