#include "MacTest.hpp"
#include "frameworks/Application.hpp"
#include "frameworks/Windows.hpp"
#include "platform/macos/SystemForeground.hpp"

#include <gmock/gmock.h>

#include <cstdint>

namespace orvel {
namespace {

using testing::ElementsAre;

/// The toolkit's panel, which is a view.
class ViewHandle final : public ToolkitWindow {
 public:
  explicit ViewHandle(FakeView* view) : view_(view) {}

  std::uintptr_t nativeHandle() const override { return reinterpret_cast<std::uintptr_t>((__bridge void*)view_); }

 private:
  FakeView* const view_;
};

class ForegroundTest : public MacTest {
 protected:
  void SetUp() override {
    MacTest::SetUp();
    fake::application() = {};
    window_ = [[FakeWindow alloc] init];
    window_.hidesOnDeactivate = YES;
    view_ = [[FakeView alloc] init];
    view_->window_ = window_;
  }

  void TearDown() override {
    view_ = nil;
    window_ = nil;
    MacTest::TearDown();
  }

  ViewHandle view() const { return ViewHandle(view_); }

  SystemForeground foreground_;
  FakeWindow* window_ = nil;
  FakeView* view_ = nil;
};

TEST_F(ForegroundTest, TheProgramHasNoPlaceInTheDock) {
  foreground_.becomeAccessory();
  EXPECT_EQ(fake::application().policy, 1) << "an accessory";
}

TEST_F(ForegroundTest, ThePanelOpensWhereTheUserIsAndInNoListOfWindows) {
  // As the toolkit makes it.
  window_.collectionBehavior = NSWindowCollectionBehaviorFullScreenPrimary;
  foreground_.keepOutOfList(view());
  EXPECT_EQ(window_.collectionBehavior, 0x14aU);
  EXPECT_EQ(window_->madeKey_, 0);
}

TEST_F(ForegroundTest, ThePanelDoesNotWaitForTheProgramToBeActive) {
  foreground_.keepOutOfList(view());
  EXPECT_FALSE(window_.hidesOnDeactivate);
}

TEST_F(ForegroundTest, AWindowIsBroughtWithItsProgram) {
  foreground_.bring(view(), {});
  EXPECT_THAT(fake::application().activations, ElementsAre("activateIgnoringOtherApps"));
  EXPECT_EQ(window_->madeKey_, 1);
}

TEST_F(ForegroundTest, AnActivationMayBounceForAWhile) {
  EXPECT_EQ(foreground_.settlingTime(), Seconds(0.5));
}

TEST_F(ForegroundTest, AViewWithoutAWindowIsLeftAlone) {
  view_->window_ = nil;
  foreground_.keepOutOfList(view());
  foreground_.bring(view(), {});
  EXPECT_EQ(window_->madeKey_, 0);
}

}  // namespace
}  // namespace orvel
