#include "MacTest.hpp"
#include "frameworks/StatusBar.hpp"
#include "frameworks/SymbolImage.hpp"
#include "frameworks/Windows.hpp"
#include "platform/macos/SystemStatusItem.hpp"
#include "runtime/Dispatch.hpp"

#include <gmock/gmock.h>

#include <optional>
#include <string>
#include <vector>

namespace orvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class StatusItemTest : public MacTest {
 protected:
  void SetUp() override {
    MacTest::SetUp();
    fake::statusBar() = {};
    fake::unknownSymbol().clear();
    fake::screens() = {{{0, 0}, {1440, 900}}, {{1440, 200}, {1920, 1080}}};
    icon_.emplace();
  }

  void TearDown() override {
    icon_.reset();
    MacTest::TearDown();
  }

  void show() {
    icon_->show(Symbol::cursorArrow, {.activated = [this] { ++clicks_; },
                                      .decided = [this](bool hasPlace) { decided_.push_back(hasPlace); }});
  }

  static NSStatusBarButton* button() { return fake::statusBar().item.button; }

  std::optional<SystemStatusItem> icon_;
  int clicks_ = 0;
  std::vector<bool> decided_;
};

TEST_F(StatusItemTest, HasItsSymbolAsThePictureOfTheMenuBar) {
  show();
  ASSERT_NE(fake::statusBar().item, nil);
  EXPECT_EQ(fake::statusBar().length, -1) << "as wide as what it shows";
  EXPECT_EQ(fake::symbolOf(button().image), "cursorarrow");
  EXPECT_TRUE([button().image isTemplate]);
  EXPECT_STREQ(button().title.UTF8String, "");
}

TEST_F(StatusItemTest, SaysWhoseItIs) {
  show();
  EXPECT_EQ(fake::descriptionOf(button().image), "Orvel");
  EXPECT_STREQ(button().toolTip.UTF8String, "Orvel");
}

TEST_F(StatusItemTest, ShowsAnotherSymbol) {
  show();
  icon_->setSymbol(Symbol::cursorArrowRays);
  EXPECT_EQ(fake::symbolOf(button().image), "cursorarrow.rays");
  EXPECT_TRUE([button().image isTemplate]);
}

TEST_F(StatusItemTest, TakesNoSymbolBeforeItIsShown) {
  icon_->setSymbol(Symbol::cursorArrowRays);
  EXPECT_EQ(fake::statusBar().item, nil);
  show();
  EXPECT_EQ(fake::symbolOf(button().image), "cursorarrow");
}

TEST_F(StatusItemTest, IsSeenByItsNameWhereTheSymbolIsUnknown) {
  fake::unknownSymbol() = "cursorarrow.rays";
  show();
  icon_->setSymbol(Symbol::cursorArrowRays);
  EXPECT_EQ(button().image, nil);
  EXPECT_STREQ(button().title.UTF8String, "Orvel");
  icon_->setSymbol(Symbol::cursorArrow);
  EXPECT_NE(button().image, nil);
  EXPECT_STREQ(button().title.UTF8String, "");
}

TEST_F(StatusItemTest, ActsOnEachPress) {
  show();
  fake::pressItem(NSEventMaskLeftMouseDown);
  EXPECT_EQ(clicks_, 1);
  fake::pressItem(NSEventMaskLeftMouseUp);
  EXPECT_EQ(clicks_, 1);
  fake::pressItem(NSEventMaskRightMouseDown);
  EXPECT_EQ(clicks_, 2);
  fake::pressItem(NSEventMaskRightMouseUp);
  EXPECT_EQ(clicks_, 2);
}

TEST_F(StatusItemTest, SaysOnceAndLaterThatItHasItsPlace) {
  EXPECT_FALSE(icon_->isShown());
  show();
  EXPECT_THAT(decided_, IsEmpty()) << "not within the call";
  dispatch::turnMainQueue();
  EXPECT_THAT(decided_, ElementsAre(true));
  EXPECT_TRUE(icon_->isShown());
  icon_->setSymbol(Symbol::cursorArrowRays);
  dispatch::turnMainQueue();
  EXPECT_EQ(decided_.size(), 1U);
}

TEST_F(StatusItemTest, SaysThatTheUserHasHiddenIt) {
  fake::statusBar().hidesItems = true;
  show();
  dispatch::turnMainQueue();
  EXPECT_THAT(decided_, ElementsAre(false));
  EXPECT_FALSE(icon_->isShown());
}

TEST_F(StatusItemTest, SaysNothingOnceItHasGone) {
  show();
  icon_.reset();
  EXPECT_EQ(fake::statusBar().item, nil);
  dispatch::turnMainQueue();
  EXPECT_THAT(decided_, IsEmpty());
}

TEST_F(StatusItemTest, IsWhereTheWindowOfItsButtonIsSeenFromTheTop) {
  EXPECT_EQ(icon_->place(), std::nullopt);
  show();
  EXPECT_EQ(icon_->place(), std::nullopt) << "it has no window yet";
  FakeWindow* const window = [[FakeWindow alloc] init];
  fake::statusBar().window = window;
  window->frame_ = {{1200, 876}, {28, 24}};
  EXPECT_EQ(icon_->place(), (Rect{{1200, 0}, {28, 24}}));
  // On the second screen, whose top is above that of the first.
  window->frame_ = {{3000, 1256}, {28, 24}};
  EXPECT_EQ(icon_->place(), (Rect{{3000, -380}, {28, 24}}));
  fake::screens().clear();
  EXPECT_EQ(icon_->place(), std::nullopt);
  fake::statusBar().window = nil;
}

}  // namespace
}  // namespace orvel
