#include "MacTest.hpp"
#include "frameworks/DisplayList.hpp"
#include "platform/macos/SystemDisplays.hpp"

#include <gmock/gmock.h>

#include <thread>
#include <vector>

namespace orvel {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr fake::Display builtIn{.id = 7, .bounds = {{0, 0}, {1440, 900}}};
constexpr fake::Display external{.id = 9, .bounds = {{-1920, -180}, {1920, 1080}}};
constexpr Rect builtInBounds{{0, 0}, {1440, 900}};
constexpr Rect externalBounds{{-1920, -180}, {1920, 1080}};

class DisplaysTest : public MacTest {
 protected:
  void SetUp() override {
    MacTest::SetUp();
    fake::displayList() = {};
    fake::displayList().active = {builtIn, external};
  }
};

TEST_F(DisplaysTest, AreTheActiveOnesWithTheMainDisplayAmongThem) {
  const SystemDisplays displays;
  EXPECT_EQ(displays.layout()->main, builtInBounds);
  EXPECT_THAT(displays.layout()->screens, ElementsAre(builtInBounds, externalBounds));
}

TEST_F(DisplaysTest, TheMainDisplayComesFirstWhateverTheOrderOfTheSystem) {
  fake::displayList().active = {external, builtIn};
  fake::displayList().main = builtIn.id;
  const SystemDisplays displays;
  EXPECT_EQ(displays.layout()->main, builtInBounds);
  EXPECT_THAT(displays.layout()->screens, ElementsAre(builtInBounds, externalBounds));
}

TEST_F(DisplaysTest, TheOthersKeepTheirOrder) {
  constexpr fake::Display projector{.id = 3, .bounds = {{1440, 0}, {800, 600}}};
  fake::displayList().active = {external, projector, builtIn};
  fake::displayList().main = builtIn.id;
  const SystemDisplays displays;
  EXPECT_THAT(displays.layout()->screens, ElementsAre(builtInBounds, externalBounds, Rect{{1440, 0}, {800, 600}}));
}

TEST_F(DisplaysTest, TheSystemIsNotAskedForEachEvent) {
  const SystemDisplays displays;
  const int questions = fake::displayList().questions;
  const auto first = displays.layout();
  EXPECT_EQ(displays.layout(), first);
  EXPECT_EQ(fake::displayList().questions, questions);
}

TEST_F(DisplaysTest, AChangeMakesANewLayout) {
  const SystemDisplays displays;
  const auto before = displays.layout();
  fake::displayList().become({external});
  EXPECT_EQ(displays.layout()->main, externalBounds);
  EXPECT_THAT(displays.layout()->screens, ElementsAre(externalBounds));
  EXPECT_EQ(before->main, builtInBounds) << "who holds the old one keeps it";
}

TEST_F(DisplaysTest, AnyThreadReadsThemWhileTheyChange) {
  const SystemDisplays displays;
  std::thread reader([&] {
    for (int times = 0; times < 1000; ++times) ASSERT_FALSE(displays.layout()->screens.empty());
  });
  for (int times = 0; times < 100; ++times) fake::displayList().become({external});
  reader.join();
}

TEST_F(DisplaysTest, WhatIsAboutToChangeIsNotAskedFor) {
  const SystemDisplays displays;
  const auto before = displays.layout();
  for (const auto& [callback, userInfo] : fake::displayList().watchers) {
    callback(builtIn.id, kCGDisplayBeginConfigurationFlag, userInfo);
  }
  EXPECT_EQ(displays.layout(), before);
}

TEST_F(DisplaysTest, ADisplayThatGoesWhileTheyAreReadIsNone) {
  fake::displayList().whenCounted = [] { fake::displayList().active = {builtIn}; };
  const SystemDisplays displays;
  EXPECT_THAT(displays.layout()->screens, ElementsAre(builtInBounds));
}

TEST_F(DisplaysTest, ADisplayThatComesWhileTheyAreReadHasToWait) {
  fake::displayList().active = {builtIn};
  fake::displayList().whenCounted = [] { fake::displayList().active = {builtIn, external}; };
  const SystemDisplays displays;
  EXPECT_THAT(displays.layout()->screens, ElementsAre(builtInBounds));
}

TEST_F(DisplaysTest, AChangeWhileTheyAreReadIsReportedAfterwards) {
  std::vector<fake::DisplayList::Watcher> watchers;
  fake::displayList().whenCounted = [&] {
    fake::displayList().active = {external};
    watchers = fake::displayList().watchers;
  };
  const SystemDisplays displays;
  for (const auto& [callback, userInfo] : watchers) callback(external.id, kCGDisplayAddFlag, userInfo);
  EXPECT_EQ(displays.layout()->main, externalBounds);
}

TEST_F(DisplaysTest, WithoutDisplaysThereAreNoScreens) {
  fake::displayList().active.clear();
  const SystemDisplays displays;
  EXPECT_THAT(displays.layout()->screens, IsEmpty());
}

TEST_F(DisplaysTest, WithoutAnAnswerThereAreNoScreens) {
  fake::displayList().isUnreadable = true;
  const SystemDisplays displays;
  EXPECT_THAT(displays.layout()->screens, IsEmpty());
}

TEST_F(DisplaysTest, NothingIsReportedOnceTheyHaveGone) {
  { const SystemDisplays displays; }
  EXPECT_THAT(fake::displayList().watchers, IsEmpty());
}

}  // namespace
}  // namespace orvel
