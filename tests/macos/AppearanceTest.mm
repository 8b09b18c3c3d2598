#include "MacTest.hpp"
#include "frameworks/Application.hpp"
#include "frameworks/KeyValueObserving.hpp"
#include "platform/macos/SystemAppearance.hpp"

#include <optional>

namespace orvel {
namespace {

class AppearanceTest : public MacTest {
 protected:
  void SetUp() override {
    MacTest::SetUp();
    fake::application() = {};
  }

  void TearDown() override {
    appearance_.reset();
    MacTest::TearDown();
  }

  std::optional<SystemAppearance> appearance_{std::in_place};
};

TEST_F(AppearanceTest, IsThatOfTheApplication) {
  EXPECT_EQ(appearance_->isDark(), false);
  fake::application().appearance = "NSAppearanceNameDarkAqua";
  EXPECT_EQ(appearance_->isDark(), true);
}

TEST_F(AppearanceTest, IsUnknownWhereThereIsNone) {
  for (const char* unknown : {"", "NSAppearanceNameVibrantLight"}) {
    fake::application().appearance = unknown;
    EXPECT_EQ(appearance_->isDark(), std::nullopt);
  }
}

TEST_F(AppearanceTest, LeavesTheFontToTheToolkit) {
  EXPECT_EQ(appearance_->font(), std::nullopt);
}

TEST_F(AppearanceTest, NotifiesOfEachChangeUntilItEnds) {
  int changes = 0;
  std::optional<bool> isDark;
  appearance_->observe([&] {
    ++changes;
    isDark = appearance_->isDark();
  });
  EXPECT_EQ(changes, 0);
  fake::changeAppearance("NSAppearanceNameDarkAqua");
  EXPECT_EQ(changes, 1);
  EXPECT_EQ(isDark, true);
  fake::changeAppearance("NSAppearanceNameAqua");
  EXPECT_EQ(changes, 2);
  appearance_.reset();
  EXPECT_EQ(fake::keyValueObserverCount(), 0U);
  fake::changeAppearance("NSAppearanceNameDarkAqua");
  EXPECT_EQ(changes, 2);
}

}  // namespace
}  // namespace orvel
